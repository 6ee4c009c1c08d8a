// SPDX-License-Identifier: Apache-2.0
// SmartPtr.h - the intrusive holder through which platform objects are owned.
//
// SmartPtr<T> keeps one raw T* and owns one reference on it. T is an
// interface (or a class derived from Object); the counting calls always go
// through the object's single IObject subobject. Copies add a reference;
// moves hand the one they own over and leave their source empty, so the
// count does not change.
//
// Example:
//   SmartPtr<IPlatform> platform(Platform::GetInstance());
//   SmartPtr<ILock> lock(platform->CreateLock());   // count 0 -> 1
//   SmartPtr<ILock> other = lock;                    // 2
//   lock->Lock();                                    // fatal if lock is empty
//   SmartPtr<ILock> moved = std::move(other);        // still 2; other is empty
//   moved.Reset();                                   // 1
//
// A SmartPtr is not synchronised: one must not be assigned in one thread
// while another reads it. The objects it points to count atomically.
#ifndef KIVPLR_SMARTPTR_H
#define KIVPLR_SMARTPTR_H

#include <KivPlr/core/Export.h>
#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/IObject.h>

#include <utility>

namespace KivPlr {

template <typename T>
class KIVPLR_API SmartPtr
{
    template <typename U>
    friend class SmartPtr;

public:
    /// An empty holder.
    SmartPtr() : pointer(nullptr) {}

    /// Takes a reference on \p object unless it is null.
    SmartPtr(T* object) : pointer(object) { AddRefTo(pointer); }

    SmartPtr(const SmartPtr& other) : pointer(other.pointer) { AddRefTo(pointer); }

    /// Holds what \p other holds, seen as a T.
    template <typename U>
    SmartPtr(const SmartPtr<U>& other) : pointer(other.Get())
    {
        AddRefTo(pointer);
    }

    /// Takes over the reference \p other owns; \p other is left empty and
    /// the count is not touched.
    SmartPtr(SmartPtr&& other) noexcept : pointer(other.pointer) { other.pointer = nullptr; }

    /// Takes over the reference \p other owns, seen as a T; \p other is left
    /// empty and the count is not touched.
    template <typename U>
    SmartPtr(SmartPtr<U>&& other) noexcept : pointer(other.pointer)
    {
        other.pointer = nullptr;
    }

    ~SmartPtr() { Reset(); }

    /// Holding the same pointer already does nothing. Otherwise the new object
    /// is referenced before the old one is released, so assigning through an
    /// alias of the held object is safe.
    SmartPtr& operator=(T* object)
    {
        if (object != pointer) {
            AddRefTo(object);
            T* old = pointer;
            ReleaseFrom(old);
            pointer = object;
        }
        return *this;
    }

    SmartPtr& operator=(const SmartPtr& other) { return *this = other.pointer; }

    template <typename U>
    SmartPtr& operator=(const SmartPtr<U>& other)
    {
        return *this = other.Get();
    }

    /// Takes over the reference \p other owns and leaves \p other empty; the
    /// object this holder held before loses one reference (after the new one
    /// is stored). Moving a holder into itself changes nothing.
    SmartPtr& operator=(SmartPtr&& other) noexcept
    {
        if (&other != this)
            Adopt(other.pointer, other.pointer);
        return *this;
    }

    /// As above, for a holder of a type that converts to T.
    template <typename U>
    SmartPtr& operator=(SmartPtr<U>&& other) noexcept
    {
        Adopt(other.pointer, other.pointer);
        return *this;
    }

    /// Releases the held object, if any, and empties the holder.
    void Reset()
    {
        if (pointer != nullptr) {
            T* old = pointer;
            pointer = nullptr;
            ReleaseFrom(old);
        }
    }

    /// The held object; an empty holder ends the process (fatal error).
    T* operator->() const { return Checked(); }
    /// The held object; an empty holder ends the process (fatal error).
    T& operator*() const { return *Checked(); }

    /// The raw pointer, possibly null, without side effects.
    T* Get() const { return pointer; }
    explicit operator bool() const { return pointer != nullptr; }

    template <typename U>
    bool operator==(const SmartPtr<U>& other) const
    {
        return pointer == other.Get();
    }
    template <typename U>
    bool operator!=(const SmartPtr<U>& other) const
    {
        return pointer != other.Get();
    }

private:
    // Stores \p object without counting it, empties \p source (the field it
    // came from) and then releases what was held before, so the release sees
    // this holder already in its new state.
    template <typename U>
    void Adopt(T* object, U*& source)
    {
        T* old = pointer;
        source = nullptr;
        pointer = object;
        ReleaseFrom(old);
    }

    static void AddRefTo(T* object)
    {
        if (object != nullptr)
            static_cast<IObject*>(object)->AddRef();
    }

    static void ReleaseFrom(T* object)
    {
        if (object != nullptr)
            static_cast<IObject*>(object)->Release();
    }

    T* Checked() const
    {
        if (pointer == nullptr)
            FatalError(L"SmartPtr<T>-> NULL reference");
        return pointer;
    }

    T* pointer;
};

} // namespace KivPlr

#endif
