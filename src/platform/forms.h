#pragma once
/// Forms: dialogs of the program's own. The caller describes the controls and their arrangement,
/// hears what the user does to them, and reads and sets them; the platform shows them and decides
/// nothing, except that a default or cancel button closes its form.

#include "platform/geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

enum class ControlKind : uint8_t {
    // Arrangements of their children.
    column,
    row,
    buttons, ///< a row at the place where the desktop has its buttons
    grid,    ///< the children are rows of controls, which stand below each other in columns
    group,   ///< a column in a frame with `text` on it
    scroll,  ///< a column that scrolls, before the rest does, where the screen is too low
    // Controls.
    heading,   ///< words in large letters
    label,     ///< names the controls after it in its arrangement; its access key leads to the next
    note,      ///< words that explain something, in as many lines as they need
    text_view, ///< lines to read, select and copy; it scrolls
    radio,     ///< all the radio buttons of a form exclude each other
    /// A picture with lines of `text` below it, which has no access key; the first line stands out.
    /// All the pictures of a form exclude each other, and the arrow keys lead from one to another.
    /// Enter and a double click press the form's default button.
    picture,
    /// The same, but a click, Enter and the space bar press it, and none is chosen. Tab leads to
    /// one of them, the arrow keys to the others.
    picture_button,
    /// Rows of cells under `headings`; each of `items` has a tab before each further cell. One row
    /// is chosen, and Enter or a double click activates it. It has the focus when the form opens.
    table,
    check,
    list, ///< one of `items`
    /// The same in a box that shows several of them and scrolls. A tab in an item begins its second
    /// column.
    list_box,
    combo, ///< a text field that offers `items`
    edit,  ///< a text field
    slider,
    button,
    default_button, ///< Enter presses it; it closes the form
    cancel_button   ///< Escape presses it; it closes the form
};

/// A picture, empty without pixels and file.
struct FormPicture {
    int width = 0;
    int height = 0;
    std::vector<Colour> pixels = {}; ///< rows from the top
    /// In place of pixels: a PNG file, which the host reads. It is empty when that fails.
    std::string file = {};
};

struct FormControl {
    ControlKind kind = ControlKind::column;
    int id = 0;            ///< of a control to read, set or hear of; above 0
    std::string text = {}; ///< with "&" before the access key; of a text field, its first content
    /// What a screen reader calls a control that has no text: without it, the label before it or
    /// the title of its group.
    std::string name = {};
    std::string tip = {}; ///< a sentence, shown while the pointer rests on the control
    int limit = 0;        ///< characters of a text field; 0 = no limit
    int lowest = 0;
    int highest = 0; ///< of a slider, which can stand there
    int page = 1;    ///< of a slider: the step of Page Up, Page Down and a click beside the knob
    std::vector<std::string> items = {};
    std::vector<FormControl> children = {};
    FormPicture picture = {};
    Size picture_area = {}; ///< which it is stretched to fill, or which stays empty
    std::vector<std::string> headings = {};
    Size table_area = {}; ///< of a table: characters across, and rows that are seen
};

/// The controls from top to bottom. Tab follows the order of description.
struct FormDescription {
    std::string title;
    std::vector<FormControl> controls;
    int tick = 0; ///< milliseconds from one FormEvent::Kind::ticked to the next; 0 = none
};

/// What the user did. What the program sets raises no event.
struct FormEvent {
    enum class Kind : uint8_t {
        changed, ///< value or text of the control; of radio buttons and pictures, of the one chosen
        pressed, ///< a button, also one with a picture
        activated, ///< a row of a table
        closed,    ///< the window's close button; no control
        ticked,    ///< time passes while the form is open; no control
        key        ///< that Form::await_key has asked for; no control
    };
    Kind kind = Kind::changed;
    int control = 0;
    uint8_t key = 0; ///< HostKey; KEY_NONE for one that has no code
};

constexpr int FORM_CLOSED = 0; ///< in place of a button: the window's close button

/// A form that has been made, open or not; its controls keep their state while it is closed.
/// Controls that the form lacks are skipped, and read as 0 and empty.
struct Form {
    virtual ~Form() = default;

    /// Radio button, picture and check box: 0 or 1. Lists and table: the number of the item, -1
    /// without one.
    /// Combo: of the item with the field's text. Slider: the position, kept within its range.
    virtual int value(int id) = 0;
    virtual void set_value(int id, int value) = 0;
    /// Text field: what stands in it, cut at its limit. Lists and table: the text of the item,
    /// which cannot be set. Other controls: the text of the description.
    virtual std::string text(int id) = 0;
    virtual void set_text(int id, const std::string& text) = 0;
    /// Replaces the items of a list, list box, table or combo. The first item of a list is then
    /// chosen; the text of a combo stays, and the number of a table's row as long as there are so
    /// many.
    virtual void set_items(int id, const std::vector<std::string>& items) = 0;
    /// Another picture, or an empty one; nothing for other controls.
    virtual void set_picture(int id, const FormPicture& picture) = 0;
    virtual bool is_enabled(int id) = 0;
    virtual void set_enabled(int id, bool enabled) = 0;
    /// The next key that the user presses in the form, whichever control has the focus, goes to the
    /// handler and does nothing else. A click, or another window in front, counts as KEY_NONE.
    virtual void await_key() = 0;

    /// Modal: `done` gets the id of the button that closed it, or FORM_CLOSED, before the call
    /// returns or later. It may remove the form.
    virtual void run(std::function<void(int closing_id)> done) = 0;
    /// Opens the form beside the main window, which goes on; brings it to the front when it is
    /// open.
    virtual void show() = 0;
    virtual void close() = 0; ///< without an event
    virtual bool is_open() = 0;
    virtual Size size() = 0;
    /// The top left corner, in coordinates of the screen that shows the main window.
    virtual void move(int left, int top) = 0;

    /// The decimal number that the text begins with, after spaces; 0 without one, or above 32 bits.
    uint32_t number(int id);
    void set_number(int id, uint32_t number);
};

using FormHandler = std::function<void(Form& form, const FormEvent& event)>;

struct Forms {
    virtual ~Forms() = default;
    /// A form, not open yet. It must not outlive the platform, nor be removed by its handler.
    virtual std::unique_ptr<Form> create(const FormDescription& description,
                                         FormHandler handler) = 0;
};
