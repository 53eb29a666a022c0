#pragma once
/// Forms without a screen. The driver plays the user: it queues what the user does to modal forms
/// that are still to come, and acts at once on forms that are open.

#include "platform/form_values.h"
#include "platform/headless/headless_dialogs.h"

#include <deque>
#include <string>
#include <vector>

struct HeadlessForms;

class HeadlessForm final : public Form {
public:
    HeadlessForm(const FormDescription& description, FormHandler handler, HeadlessForms& forms);
    ~HeadlessForm() override;
    HeadlessForm(const HeadlessForm&) = delete;
    HeadlessForm& operator=(const HeadlessForm&) = delete;

    int value(int id) override { return values_.value(id); }
    void set_value(int id, int value) override { values_.set_value(id, value); }
    std::string text(int id) override { return values_.text(id); }
    void set_text(int id, const std::string& text) override { values_.set_text(id, text); }
    void set_items(int id, const std::vector<std::string>& items) override {
        values_.set_items(id, items);
    }
    void set_picture(int id, const FormPicture& picture) override;
    bool is_enabled(int id) override { return values_.is_enabled(id); }
    void set_enabled(int id, bool enabled) override { values_.set_enabled(id, enabled); }
    void await_key() override { awaits_key_ = true; }
    void run(std::function<void(int)> done) override;
    void show() override { open_ = true; }
    void close() override { open_ = false; }
    bool is_open() override { return open_; }
    Size size() override { return {300, 200}; }
    void move(int left, int top) override { place = {left, top, left + 300, top + 200}; }

    FormPicture picture(int id); ///< as it is shown

    // The user, who cannot do anything to a disabled control or a closed form.
    void choose(int id, int value); ///< radio button, picture, check box, item, slider position
    void activate(int id);          ///< the chosen row of a table
    void type(int id, const std::string& text); ///< in place of what the field holds
    void press(int id);
    bool press_key(uint8_t key); ///< false when the form does not await one
    void tick();                 ///< time passes
    void press_enter() { press(button_of(ControlKind::default_button)); }
    void press_escape();
    void press_close_button();

    const FormDescription description;
    Rectangle place;

private:
    bool user_reaches(int id);
    int button_of(ControlKind kind);
    void finish(int closing_id);

    FormHandler handler_;
    HeadlessForms& forms_;
    FormValues values_;
    bool open_ = false;
    bool awaits_key_ = false;
    int closing_id_ = FORM_CLOSED;
};

struct HeadlessForms final : public Forms {
    explicit HeadlessForms(HeadlessAnswers& given) : answers(given) {}

    std::unique_ptr<Form> create(const FormDescription& description, FormHandler handler) override;
    /// The form with the title that was made last; nullptr without one.
    HeadlessForm* find(const std::string& title);

    /// What the user does to modal forms, the next act in front. A form that no act is left for is
    /// cancelled.
    std::deque<std::function<void(HeadlessForm& form)>> acts;
    std::vector<HeadlessForm*> forms;
    HeadlessAnswers& answers;
};
