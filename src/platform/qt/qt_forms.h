#pragma once
#include "platform/forms.h"
#include "platform/qt/qt_window.h"

class QtForms final : public Forms {
public:
    explicit QtForms(QtWindow& window) : window_(window) {}
    std::unique_ptr<Form> create(const FormDescription& description, FormHandler handler) override;

private:
    QtWindow& window_;
};
