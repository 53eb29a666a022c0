#pragma once
/// Forms as boxes of the page's own elements. What stands in the controls is kept here, since the
/// program asks for it at any time.

#include "platform/forms.h"

struct WebForms final : public Forms {
    std::unique_ptr<Form> create(const FormDescription& description, FormHandler handler) override;
};
