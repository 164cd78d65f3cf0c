#ifndef KVBASE_OBSERVABLEOBSERVER_OBSERVABLE_H
#define KVBASE_OBSERVABLEOBSERVER_OBSERVABLE_H

/// \file observableobserver/observable.h
/// \brief The observer pattern: Observable and IObserver.

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
    /// One change notification, in the thread that notifies.
    /// \param source the object that changed
    /// \param code   what changed, as the source's class defines it
    virtual void Update(Observable* source, TChangeCode code) = 0;
};

/// Base class of objects that announce changes to registered IObservers. One
/// privileged first observer, held outside the ordinary list, is always told
/// before the others. Observers may add or remove observers from within Update;
/// removed ones are not called any more in that round, added ones only from the
/// next round on. Observers are not owned. Not locked: one thread at a time.
///
/// \code
/// class Receiver : public Observable
/// {
/// public:
///     enum Change { FrequencyChanged = 1 };
///     void retune() { /* ... */ NotifyObservers(static_cast<TChangeCode>(FrequencyChanged), nullptr); }
/// };
/// class Display : public IObserver
/// {
///     void Update(Observable* source, TChangeCode code) override { /* redraw */ }
/// };
/// Receiver receiver;
/// Display display;
/// receiver.AddObserver(&display);
/// receiver.retune();                 // display.Update(&receiver, FrequencyChanged)
/// \endcode
class KVBASE_EXPORT Observable
{
public:
    /// No observers.
    Observable();
    /// Copies take the observers (ordinary and first), not a notification in progress.
    /// \param other the object whose observers to take
    Observable(const Observable& other);
    /// As the copy constructor.
    /// \param other the object whose observers to take
    /// \return this object
    Observable& operator=(const Observable& other);
    virtual ~Observable();

    /// \param other the object to compare with
    /// \return true for the same ordinary observers in the same order and the
    ///         same first observer
    bool operator==(const Observable& other) const;
    /// \param other the object to compare with
    /// \return the negation of operator==()
    bool operator!=(const Observable& other) const;

    /// Appends an observer to the list. The first observer is not looked at,
    /// so adding it puts it into the list too.
    /// \param observer the observer; not owned, must outlive its registration
    /// \return false for null or for one already in the list
    virtual bool AddObserver(IObserver* observer);
    /// Unsets the first observer when it is `observer`, and only that; otherwise
    /// removes `observer` from the list.
    /// \param observer the observer; unknown ones and null are ignored
    virtual void DeleteObserver(IObserver* observer);
    /// Removes every observer, the first one included.
    virtual void DeleteObservers();
    /// Makes `observer` the first observer, taking it out of the list.
    /// \param observer the new first observer; null hands the current first
    ///                 observer back to the list
    /// \throw KvException ("MakeFirstObserver called while there was one set
    ///        before!"), changing nothing, when a different first observer is set
    virtual void MakeFirstObserver(IObserver* observer);

    /// \return the first observer, or null
    const IObserver* GetFirstObserver() const { return m_pFirstObserver; }
    /// \return the ordinary observers in the order added
    std::vector<IObserver*> GetObservers() const { return m_Observers; }
    /// For diagnostics.
    /// \param observer an observer
    /// \return the dynamic type name recorded when `observer` was added to the
    ///         list; empty for observers not in the list
    std::string GetObserverTypeName(const IObserver* observer) const;

protected:
    /// Tells the first observer, then every listed observer, about `code`.
    /// When the first observer, being told, changes the object in turn and
    /// notifies with itself as `except`, only the observer excluded from the
    /// outer round hears of it, since all others are still to be told.
    /// \param code   what changed
    /// \param except the observer not to tell, usually the one that caused the
    ///               change; may be null
    virtual void NotifyObservers(TChangeCode code, IObserver* except);

private:
    std::vector<IObserver*> m_Observers;
    IObserver* m_pFirstObserver = nullptr;
    std::map<const IObserver*, std::string> m_ObserverTypeNames;
    IObserver* m_pDeferredObserver = nullptr;
    bool m_bNotifying = false;
};

#endif
