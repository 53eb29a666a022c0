#include "platform/win32/win32_spoken.h"

#include "files/wide_text.h"
#include "platform/win32/win32_library.h"

#include <initializer_list>

#include <initguid.h> // the identifiers of the next one are defined here

#include <oleacc.h>

namespace {

void set_spoken(HWND window, std::initializer_list<MSAAPROPID> properties,
                const std::string& text) {
    IAccPropServices* made = nullptr;
    if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IAccPropServices, reinterpret_cast<void**>(&made)))) {
        return;
    }
    const ComPointer<IAccPropServices> services(made);
    for (const MSAAPROPID& property : properties) {
        services->SetHwndPropStr(window, DWORD(OBJID_CLIENT), CHILDID_SELF, property,
                                 wide(text).c_str());
    }
}

} // namespace

void set_spoken_name(HWND window, const std::string& name) {
    set_spoken(window, {PROPID_ACC_NAME}, name);
}

void set_spoken_text(HWND window, const std::string& text) {
    set_spoken(window, {PROPID_ACC_VALUE, PROPID_ACC_DESCRIPTION}, text);
    NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, window, OBJID_CLIENT, CHILDID_SELF);
}
