#pragma once
#include "platform/forms.h"

struct WebForms final : public Forms {
    std::unique_ptr<Form> create(const FormDescription& description, FormHandler handler) override;
};
