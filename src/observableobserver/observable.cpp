#include "observableobserver/observable.h"

#include "errorhandling/kvexception.h"

#include <algorithm>
#include <cstdlib>
#include <typeinfo>

#if defined(__GNUG__)
#include <cxxabi.h>
#endif

namespace {

// The report names the method, not a source line: 0 instead of __LINE__ keeps
// its text the same in every build for applications that match it.
constexpr unsigned int s_nMakeFirstObserverLine = 0;
// Protocol misuse of an object; 0 is a report without code and 0xFFFFFFFF is
// taken by the contract checks.
constexpr unsigned int s_nMakeFirstObserverErrorId = 1;

std::string dynamicTypeName(const IObserver& observer)
{
    const char* name = typeid(observer).name();
#if defined(__GNUG__)
    int status = 0;
    char* demangled = abi::__cxa_demangle(name, nullptr, nullptr, &status);
    if (status == 0 && demangled) {
        std::string result(demangled);
        std::free(demangled);
        return result;
    }
    std::free(demangled);
#endif
    return name;
}

// Restores the notification state on every way out of NotifyObservers, also
// when an observer throws, and keeps an enclosing round's state intact when
// an observer starts a nested round.
template <typename T>
class ScopedValue
{
public:
    ScopedValue(T& variable, T value) : m_rVariable(variable), m_Saved(variable) { variable = value; }
    ~ScopedValue() { m_rVariable = m_Saved; }
    ScopedValue(const ScopedValue&) = delete;
    ScopedValue& operator=(const ScopedValue&) = delete;

private:
    T& m_rVariable;
    T m_Saved;
};

} // namespace

IObserver::~IObserver() = default;

Observable::Observable() = default;

// The register describes the listed observers, so it travels with the list.
Observable::Observable(const Observable& other)
    : m_Observers(other.m_Observers), m_pFirstObserver(other.m_pFirstObserver),
      m_ObserverTypeNames(other.m_ObserverTypeNames)
{
}

Observable& Observable::operator=(const Observable& other)
{
    if (this != &other) {
        m_Observers = other.m_Observers;
        m_pFirstObserver = other.m_pFirstObserver;
        m_ObserverTypeNames = other.m_ObserverTypeNames;
    }
    return *this;
}

Observable::~Observable() = default;

bool Observable::operator==(const Observable& other) const
{
    return m_Observers == other.m_Observers && m_pFirstObserver == other.m_pFirstObserver;
}

bool Observable::operator!=(const Observable& other) const
{
    return !(*this == other);
}

bool Observable::AddObserver(IObserver* observer)
{
    if (!observer || std::find(m_Observers.begin(), m_Observers.end(), observer) != m_Observers.end())
        return false;
    m_Observers.push_back(observer);
    m_ObserverTypeNames.emplace(observer, dynamicTypeName(*observer));
    return true;
}

void Observable::DeleteObserver(IObserver* observer)
{
    if (observer == m_pFirstObserver) {
        // Also for null, which is never in the list.
        m_pFirstObserver = nullptr;
        return;
    }
    const auto it = std::find(m_Observers.begin(), m_Observers.end(), observer);
    if (it == m_Observers.end())
        return;
    m_Observers.erase(it);
    m_ObserverTypeNames.erase(observer);
}

void Observable::DeleteObservers()
{
    m_pFirstObserver = nullptr;
    m_Observers.clear();
    m_ObserverTypeNames.clear();
}

void Observable::MakeFirstObserver(IObserver* observer)
{
    if (!observer) {
        if (m_pFirstObserver) {
            AddObserver(m_pFirstObserver);
            m_pFirstObserver = nullptr;
        }
        return;
    }
    if (observer == m_pFirstObserver)
        return;
    if (m_pFirstObserver)
        throw KvException(QStringLiteral("MakeFirstObserver called while there was one set before!"),
                          QStringLiteral("observableobserver\\observable"), QStringLiteral("Observable"),
                          QStringLiteral("MakeFirstObserver"), s_nMakeFirstObserverLine,
                          s_nMakeFirstObserverErrorId);
    DeleteObserver(observer);
    m_pFirstObserver = observer;
}

std::string Observable::GetObserverTypeName(const IObserver* observer) const
{
    const auto it = m_ObserverTypeNames.find(observer);
    return it == m_ObserverTypeNames.end() ? std::string() : it->second;
}

void Observable::NotifyObservers(TChangeCode code, IObserver* except)
{
    if (except && except == m_pFirstObserver && m_bNotifying) {
        if (!m_pDeferredObserver || m_pDeferredObserver == except)
            return;
        // Cleared before the call, so a further re-entry from within it cannot call it again.
        IObserver* deferred = m_pDeferredObserver;
        m_pDeferredObserver = nullptr;
        deferred->Update(this, code);
        return;
    }

    ScopedValue<bool> notifying(m_bNotifying, true);
    const std::vector<IObserver*> observers = m_Observers;

    if (m_pFirstObserver && m_pFirstObserver != except) {
        ScopedValue<IObserver*> deferred(m_pDeferredObserver, except);
        m_pFirstObserver->Update(this, code);
    }

    for (IObserver* observer : observers) {
        if (observer == except)
            continue;
        if (std::find(m_Observers.begin(), m_Observers.end(), observer) != m_Observers.end())
            observer->Update(this, code);
    }
}
