#pragma once
#include "platform/forms.h"
#include "platform/qt/qt_keyboard.h"
#include "platform/qt/qt_window.h"

class QtForms final : public Forms {
public:
    QtForms(QtWindow& window, const QtKeyboard& keyboard) : window_(window), keyboard_(keyboard) {}
    std::unique_ptr<Form> create(const FormDescription& description, FormHandler handler) override;

private:
    QtWindow& window_;
    const QtKeyboard& keyboard_;
};
