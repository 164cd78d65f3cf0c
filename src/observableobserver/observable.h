#ifndef KVBASE_OBSERVABLEOBSERVER_OBSERVABLE_H
#define KVBASE_OBSERVABLEOBSERVER_OBSERVABLE_H

#include "kvbase_export.h"

#include <map>
#include <string>
#include <vector>

/// What changed, passed through unchanged from the observable to its observers.
/// The values belong to the applications: declare your own codes and cast them,
/// e.g. `NotifyObservers(static_cast<TChangeCode>(MyModel::FrequencyChanged), this)`;
/// every int value is valid.
enum TChangeCode : int
{
};

class Observable;

/// Receives the change notifications of the Observables it is registered with.
class KVBASE_EXPORT IObserver
{
public:
    virtual ~IObserver();
    virtual void Update(Observable* source, TChangeCode code) = 0;
};

/// Base class of objects that announce changes to registered IObservers. One
/// privileged first observer, held outside the ordinary list, is always told
/// before the others. Observers may add or remove observers from within Update;
/// removed ones are not called any more in that round, added ones only from the
/// next round on. Observers are not owned. Not locked: one thread at a time.
class KVBASE_EXPORT Observable
{
public:
    Observable();
    /// Copies take the observers (ordinary and first), not a notification in progress.
    Observable(const Observable& other);
    Observable& operator=(const Observable& other);
    virtual ~Observable();

    /// Same ordinary observers in the same order and the same first observer.
    bool operator==(const Observable& other) const;
    bool operator!=(const Observable& other) const;

    /// Appends `observer`; false for null or for one already in the list. The
    /// first observer is not looked at, so adding it puts it into the list too.
    virtual bool AddObserver(IObserver* observer);
    /// Unsets the first observer when it is `observer`, and only that; otherwise
    /// removes `observer` from the list. Unknown observers are ignored.
    virtual void DeleteObserver(IObserver* observer);
    virtual void DeleteObservers();
    /// Makes `observer` the first observer, taking it out of the list. Null hands
    /// the current first observer back to the list. Throws KvException, changing
    /// nothing, when a different first observer is already set.
    virtual void MakeFirstObserver(IObserver* observer);

    const IObserver* GetFirstObserver() const { return m_pFirstObserver; }
    std::vector<IObserver*> GetObservers() const { return m_Observers; }
    /// The dynamic type name recorded when `observer` was added to the list, for
    /// diagnostics; empty for observers not in the list.
    std::string GetObserverTypeName(const IObserver* observer) const;

protected:
    /// Tells the first observer, then every listed observer, about `code`, all
    /// but `except` (usually the observer that caused the change; may be null).
    /// When the first observer, being told, changes the object in turn and
    /// notifies with itself as `except`, only the observer excluded from the
    /// outer round hears of it, since all others are still to be told.
    virtual void NotifyObservers(TChangeCode code, IObserver* except);

private:
    std::vector<IObserver*> m_Observers;
    IObserver* m_pFirstObserver = nullptr;
    std::map<const IObserver*, std::string> m_ObserverTypeNames;
    IObserver* m_pDeferredObserver = nullptr;
    bool m_bNotifying = false;
};

#endif
