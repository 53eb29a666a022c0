#include "platform/web/web_forms.h"

#include "platform/web/web_page.h"

namespace {

class WebForm final : public Form {
public:
    int value(int) override { return 0; }
    void set_value(int, int) override {}
    std::string text(int) override { return {}; }
    void set_text(int, const std::string&) override {}
    void set_items(int, const std::vector<std::string>&) override {}
    void set_picture(int, const FormPicture&) override {}
    bool is_enabled(int) override { return false; }
    void set_enabled(int, bool) override {}
    void await_key() override {}
    void run(std::function<void(int)> done) override { done(FORM_CLOSED); }
    void show() override {}
    void close() override {}
    bool is_open() override { return false; }
    Size size() override { return {}; }
    void move(int, int) override {}
};

} // namespace

std::unique_ptr<Form> WebForms::create(const FormDescription& /*description*/,
                                       FormHandler /*handler*/) {
    return std::make_unique<WebForm>();
}
