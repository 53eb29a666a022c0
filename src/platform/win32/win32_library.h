#pragma once
/// Libraries of Windows that are loaded while the program runs, and the objects they make.

#include "platform/win32/win32_windows.h"

#include <memory>

/// A library of the system folder; it stays loaded as long as the object lives.
class Win32Library {
public:
    explicit Win32Library(const wchar_t* name)
        : module_(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}
    Win32Library(const Win32Library&) = delete;
    Win32Library& operator=(const Win32Library&) = delete;
    ~Win32Library() {
        if (module_) FreeLibrary(module_);
    }

    bool loaded() const { return module_ != nullptr; }
    /// Sets `function` to the one of that name; false and null when it is missing.
    template <typename Function>
    bool find(const char* name, Function*& function) const {
        void* found = module_ ? reinterpret_cast<void*>(GetProcAddress(module_, name)) : nullptr;
        function = reinterpret_cast<Function*>(found);
        return found != nullptr;
    }

private:
    HMODULE module_;
};

struct ComRelease {
    template <typename Object>
    void operator()(Object* object) const {
        object->Release();
    }
};

/// Owns a reference to an object of a COM interface.
template <typename Object>
using ComPointer = std::unique_ptr<Object, ComRelease>;

/// For functions that hand an object out through a pointer. What the owner had before is released
/// first.
template <typename Object>
class ComResult {
public:
    explicit ComResult(ComPointer<Object>& owner) : owner_(owner) { owner_.reset(); }
    ComResult(const ComResult&) = delete;
    ComResult& operator=(const ComResult&) = delete;
    ~ComResult() { owner_.reset(object_); }
    operator Object**() { return &object_; }

private:
    ComPointer<Object>& owner_;
    Object* object_ = nullptr;
};
