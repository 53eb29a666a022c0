// The controls of a form, from their descriptions. Each has an element, takes what the program sets
// and tells the form what the user does.

import { newId } from './box.js';
import { make, plain, split, write } from './labels.js';
import { Table } from './table.js';

const CHANGED = 0;
const PRESSED = 1;
const ACTIVATED = 2;

const LIST_BOX = { width: 30, lines: 10 };
const WIDEST_FIELD = 40;     // characters; fields of longer texts scroll
const UNLIMITED_FIELD = 10;
const SMALL_BUTTON_TEXT = 3; // such a button stands at the field it belongs to

/// What all have in common; `input` is what has the focus.
class Control {
  constructor(form, described, element, input = element) {
    Object.assign(this, { form, id: described.id, kind: described.kind, element, input });
    this.label = described.text;
  }
  tell(kind, value = 0, text = '') { this.form.tell(kind, this.id, value, text); }
  setValue() {}
  setText() {}
  setItems() {}
  setPicture() {}
  enable(on) { this.input.disabled = !on; }
  act() { this.input.focus(); }
  accessKey() { return split(this.label).key; }
}

class Words extends Control {
  constructor(form, described) {
    const names = { heading: 'h3', note: 'p', label: 'label' };
    super(form, described, make(names[described.kind], { class: 'form-' + described.kind }));
    this.setText(described.text);
  }
  setText(text) {
    if (this.shown === text) return;
    this.label = this.shown = text;
    this.kind === 'label' ? write(this.element, text) : this.element.textContent = text;
  }
  enable(on) { this.element.classList.toggle('faint', !on); }
  act() { document.getElementById(this.element.htmlFor)?.focus(); }
  accessKey() { return this.kind === 'label' ? super.accessKey() : ''; }
}

class TextView extends Control {
  constructor(form, described) {
    super(form, described, make('textarea', { class: 'form-view', readonly: true, rows: '16', cols: '80' }));
    this.setText(described.text);
  }
  setText(text) { this.element.value = text; }
  /// Opens at the end, where the newest lines are.
  opened() { this.element.scrollTop = this.element.scrollHeight; }
  accessKey() { return ''; }
}

/// Check boxes and radio buttons.
class Mark extends Control {
  constructor(form, described) {
    const radio = described.kind === 'radio';
    const input = make('input', { type: radio ? 'radio' : 'checkbox', name: radio ? form.name : null });
    const words = make('span');
    super(form, described, make('label', { class: 'form-mark' }, input, words), input);
    this.words = words;
    this.setText(described.text);
    input.addEventListener('change', () => this.tell(CHANGED, input.checked ? 1 : 0));
  }
  setValue(value) { if (value || this.kind === 'check') this.input.checked = value !== 0; }
  setText(text) { write(this.words, this.label = text); }
  act() {
    this.input.focus();
    this.input.click();
  }
}

class Push extends Control {
  constructor(form, described) {
    super(form, described, make('button', { class: 'push' }));
    const isSmall = described.kind === 'button' && described.text.length <= SMALL_BUTTON_TEXT;
    this.element.classList.toggle('small', isSmall);
    this.setText(described.text);
    this.element.addEventListener('click', () => this.tell(PRESSED));
  }
  setText(text) { write(this.element, this.label = text); }
  act() { this.element.click(); }
}

/// A picture with words, to be chosen or pressed. Arrow keys lead from one to another.
class Picture extends Control {
  constructor(form, described) {
    const chosen = described.kind === 'picture';
    const frame = make('span', { class: 'picture-frame', 'aria-hidden': 'true' });
    const words = make('span', { class: 'picture-words' });
    super(form, described, make('button', { class: described.kind, role: chosen ? 'radio' : null,
      'aria-checked': chosen ? 'false' : null, tabindex: '-1' }, frame, words));
    Object.assign(this, { frame, words, chosen });
    const [width, height] = described.area;
    frame.style.aspectRatio = `${width} / ${height}`;
    this.element.style.setProperty('--wide', width + 'px');
    this.setText(described.text);
    if (described.file) this.setPicture(described.file);
    this.element.addEventListener('click', () => this.click());
    this.element.addEventListener('dblclick', () => { if (chosen) form.box.default?.click(); });
    this.element.addEventListener('focus', () => form.rove(this));
    this.element.addEventListener('keydown', event => this.key(event));
  }
  click() {
    if (this.chosen) form_choose(this);
    this.tell(this.chosen ? CHANGED : PRESSED, 1);
  }
  key(event) {
    if (event.key === 'Enter' && this.chosen) {
      event.preventDefault();
      this.form.box.default?.click();
    }
    const next = this.form.pictureBeside(this, event.key);
    if (!next) return;
    event.preventDefault();
    next.element.focus();
    if (this.chosen) next.click();
  }
  setValue(value) { if (value && this.chosen) form_choose(this); }
  setText(text) {
    this.label = '';
    const lines = text.split('\n');
    const name = n => n || !this.chosen ? 'span' : 'b';
    this.words.replaceChildren(...lines.map((line, n) => make(name(n), { title: line }, line)));
  }
  /// The address of a file, or a canvas, or nothing.
  setPicture(picture) {
    if (typeof picture !== 'string') return this.frame.replaceChildren(...(picture ? [picture] : []));
    const address = picture && this.form.page.store.urlOf?.(picture);
    this.frame.replaceChildren(...(address ? [make('img', { src: address, alt: '' })] : []));
  }
  enable(on) { this.element.disabled = !on; }
}

function form_choose(picture) {
  for (const other of picture.form.pictures) {
    other.element.setAttribute('aria-checked', String(other === picture));
  }
  picture.form.rove(picture);
}

class Rows extends Control {
  constructor(form, described, name) {
    const isTable = described.kind === 'table';
    const [width, lines] = isTable ? described.tableArea : [LIST_BOX.width, LIST_BOX.lines];
    const table = new Table({ headings: described.headings, width, lines, keepsRow: isTable, name });
    super(form, described, table.element, table.table);
    this.table = table;
    table.setRows(described.items);
    table.onChoice = () => this.tell(CHANGED, table.row);
    table.onActivation = () => { if (isTable && table.row >= 0) this.tell(ACTIVATED, table.row); };
  }
  setValue(value) { this.table.mark(value); }
  setItems(items) { this.table.setRows(items); }
  enable(on) { this.element.inert = !on; }
  opened() { this.table.mark(this.table.row); }
}

const setOptions = (select, items) =>
  select.replaceChildren(...items.map(item => make('option', {}, item.replace('\t', '  '))));

class List extends Control {
  constructor(form, described) {
    super(form, described, make('select'));
    this.setItems(described.items);
    this.element.addEventListener('change', () => this.tell(CHANGED, this.element.selectedIndex));
  }
  setValue(value) { this.element.selectedIndex = value; }
  setItems(items) { setOptions(this.element, items); }
}

class Edit extends Control {
  constructor(form, described, name, element = null) {
    const { limit } = described;
    const size = String(Math.min(limit || UNLIMITED_FIELD, WIDEST_FIELD));
    const input = make('input', { type: 'text', maxlength: limit || null, size, autocomplete: 'off',
      autocapitalize: 'off', spellcheck: 'false' });
    super(form, described, element ?? input, input);
    input.value = described.text;
    this.label = '';
    input.addEventListener('input', () => this.tell(CHANGED, 0, input.value));
  }
  setText(text) { if (this.input.value !== text) this.input.value = text; } // the cursor stays
}

/// A field with a list beside it.
class Combo extends Edit {
  constructor(form, described, name) {
    const span = make('span', { class: 'combo' });
    super(form, described, name, span);
    this.list = make('select', { tabindex: '-1', 'aria-label': (described.name || name) + ': choices' });
    span.append(this.input, this.list);
    this.setItems(described.items);
    this.list.addEventListener('change', () => {
      this.input.value = this.items[this.list.selectedIndex] ?? '';
      this.list.selectedIndex = -1;
      this.tell(CHANGED, 0, this.input.value);
      this.input.focus();
    });
    this.input.addEventListener('keydown', event => {
      if (event.key !== 'ArrowDown') return;
      event.preventDefault();
      try {
        this.list.showPicker();
      } catch {
        this.list.focus(); // an older browser
      }
    });
  }
  setItems(items) {
    this.items = items;
    setOptions(this.list, items);
    this.list.selectedIndex = -1;
  }
  setValue(value) { this.input.value = this.items[value] ?? ''; }
  enable(on) { this.input.disabled = this.list.disabled = !on; }
}

class Slider extends Control {
  constructor(form, described) {
    const { lowest, highest, page } = described;
    const range = { type: 'range', min: lowest, max: highest, step: '1', value: lowest };
    super(form, described, make('input', range));
    this.element.addEventListener('input', () => this.tell(CHANGED, Number(this.element.value)));
    this.element.addEventListener('keydown', event => {
      const step = { PageUp: page, PageDown: -page }[event.key];
      if (!step) return;
      event.preventDefault();
      this.element.value = Number(this.element.value) + step;
      this.tell(CHANGED, Number(this.element.value));
    });
  }
  setValue(value) { this.element.value = value; }
}

const CONTROLS = {
  heading: Words, label: Words, note: Words, text_view: TextView, radio: Mark, check: Mark,
  picture: Picture, picture_button: Picture, table: Rows, list_box: Rows, list: List, combo: Combo,
  edit: Edit, slider: Slider, button: Push, default_button: Push, cancel_button: Push,
};

/// Makes controls and arrangements. `naming` is what stands before a control: the last label until
/// its control comes, and a name for those after it.
export class Builder {
  constructor(form) { this.form = form; }

  all(described, parent, naming) {
    for (const control of described) parent.append(this.make(control, naming));
  }

  make(described, naming) {
    switch (described.kind) {
    case 'column':
    case 'row':
    case 'buttons': return this.arrangement(described, { ...naming });
    case 'grid': return this.grid(described, naming);
    case 'group': return this.group(described);
    case 'scroll': {
      this.form.box.element.classList.add('tall');
      const element = make('div', { class: 'form-scroll', tabindex: '-1' });
      this.all(described.children, element, naming);
      return element;
    }
    default: return this.control(described, naming);
    }
  }

  arrangement(described, naming) {
    const element = make('div', { class: 'form-' + described.kind });
    this.markPictures(element, described.children, naming);
    this.all(described.children, element, naming);
    return element;
  }

  markPictures(element, children, naming) {
    const pictures = children.filter(child => child.kind.startsWith('picture'));
    if (!pictures.length) return;
    element.classList.add('pictures');
    this.form.box.element.classList.add('with-pictures');
    if (pictures[0].kind !== 'picture') return;
    element.setAttribute('role', 'radiogroup');
    element.setAttribute('aria-label', naming.name || this.form.title);
  }

  grid(described, naming) {
    const element = make('div', { class: 'form-grid' });
    const columns = Math.max(...described.children.map(row => row.children.length));
    element.style.setProperty('--columns', String(columns));
    const further = Array(Math.max(0, columns - 2)).fill('auto');
    const tracks = ['fit-content(34%)', 'minmax(0, 1fr)', ...further].slice(0, columns);
    element.style.setProperty('--narrow', tracks.join(' '));
    this.markPictures(element, described.children.flatMap(row => row.children), naming);
    for (const row of described.children) {
      const rowNaming = { label: null, name: naming.name };
      row.children.forEach((cell, place) => {
        const made = this.make(cell, rowNaming);
        if (!place) made.classList.add('row-start');
        element.append(made);
      });
      // Where there is little room, a short row has all of it.
      element.lastChild.style.setProperty('--span', String(columns - row.children.length + 1));
      element.lastChild.classList.add('row-end');
    }
    return element;
  }

  group(described) {
    const legend = make('legend');
    const element = make('fieldset', {}, legend);
    const title = new Control(this.form, described, element);
    title.setText = text => write(legend, text);
    title.setText(described.text);
    title.accessKey = () => '';
    if (described.id) this.form.controls.set(described.id, title);
    this.all(described.children, element, { label: null, name: plain(described.text) });
    return element;
  }

  control(described, naming) {
    const control = new CONTROLS[described.kind](this.form, described, naming.name);
    const { form } = this;
    if (described.id) form.controls.set(described.id, control);
    form.box.keys.push({ key: () => control.accessKey(), act: () => control.act() });
    if (control instanceof Words) {
      if (described.kind === 'label') Object.assign(naming, { label: control, name: plain(described.text) });
      return control.element;
    }
    form.order.push(control);
    if (control instanceof Picture) form.pictures.push(control);
    if (described.kind === 'default_button') form.box.setDefault(control.element);
    if (described.kind === 'cancel_button') form.cancel = control;
    if (described.tip) control.element.title = described.tip;
    this.name(control, described, naming);
    return control.element;
  }

  /// A label is tied to the first control after it.
  name(control, described, naming) {
    const { input } = control;
    input.id = newId();
    const isField = !(control instanceof Push || control instanceof Mark || control instanceof Picture);
    const label = naming.label;
    naming.label = null;
    if (label) label.element.htmlFor = input.id;
    if (described.name) input.setAttribute('aria-label', described.name);
    else if (isField && naming.name && (!label || control instanceof Rows)) {
      input.setAttribute('aria-label', naming.name);
    }
  }
}
