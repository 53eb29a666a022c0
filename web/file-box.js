// The box that asks for a file: those of the page, and those of the user's device.

import { Box, newId, wordsBox } from './box.js';
import { labelled, make, split } from './labels.js';
import { Table } from './table.js';

const FOLDER = '/store/files/';
const CHARACTERS = 44; // across the list
const LINES = 10;

const sizeText = bytes => bytes < 1024 ? `${bytes} B` : `${Math.round(bytes / 1024)} KB`;
const timeText = time => new Date(time).toLocaleDateString(undefined, { dateStyle: 'medium' });

export class FileBox {
  constructor(page, described, { preview, done }) {
    Object.assign(this, { page, described, done });
    this.files = [];
    this.box = new Box(described.title, { onEscape: () => done(null) });
    this.box.element.classList.add('files');
    this.table = new Table({ headings: ['Name', 'Size', 'Date'], width: CHARACTERS, lines: LINES,
      keepsRow: true, name: 'Files' });
    this.table.onChoice = () => this.marked();
    this.table.onActivation = () => this.accept();
    const remedy = described.save ? '' : ' Bring one from this device, or drop it on the page.';
    this.none = make('p', { class: 'files-none' }, 'No files of this kind here yet.' + remedy);
    const middle = make('div', { class: 'files-middle' }, this.table.element, this.none);
    if (described.preview) {
      this.preview = make('pre', { class: 'files-preview', tabindex: '0', role: 'region',
        'aria-label': 'What is in the file' });
      this.previewOf = preview;
      middle.append(this.preview);
    }
    this.box.contents.append(middle, this.actions(), this.fields());
    this.buttons();
    this.list();
    this.box.first = described.save ? this.name : this.files.length ? this.table.table : this.bringer;
  }

  /// What can be done with the file that is marked.
  actions() {
    this.download = this.box.button('&Download', () => this.page.files.download(this.file().path));
    this.removal = this.box.button('&Remove...', () => this.remove());
    this.bringer = this.box.button('&From this device...', () => this.bring());
    return make('div', { class: 'form-row files-actions' }, this.bringer, this.download, this.removal);
  }

  field(label, input) {
    input.id = newId();
    const words = labelled('label', { for: input.id }, label);
    this.box.keys.push({ key: () => split(label).key, act: () => input.focus() });
    return [words, input];
  }

  fields() {
    const { save, filters, fields, filter } = this.described;
    const rows = make('div', { class: 'form-grid files-fields' });
    rows.style.setProperty('--columns', '2');
    const input = attributes => make('input', { type: 'text', autocomplete: 'off', autocapitalize: 'off',
      spellcheck: 'false', ...attributes });
    if (save) {
      this.name = input({});
      this.name.addEventListener('input', () => this.typed());
      rows.append(...this.field('File &name:', this.name));
    }
    this.types = make('select', {}, ...filters.map(({ text }) => make('option', {}, text)));
    this.types.selectedIndex = Math.max(0, Math.min(filter, filters.length - 1));
    this.types.addEventListener('change', () => this.list());
    rows.append(...this.field('File &type:', this.types));
    this.edits = fields.map(({ label, limit, text }) => {
      const edit = input({ maxlength: limit || null, size: String(limit || 10) });
      edit.value = text;
      edit.classList.add('short');
      rows.append(...this.field(label, edit));
      return edit;
    });
    return rows;
  }

  buttons() {
    this.ok = this.box.button(this.described.save ? '&Save' : '&Open', () => this.accept());
    this.box.addButtons(this.ok, this.box.button('Cancel', () => this.done(null)));
    this.box.setDefault(this.ok);
  }

  filter() { return this.described.filters[this.types.selectedIndex] ?? { pattern: '*.*', extension: '' }; }
  file() { return this.files[this.table.row]; }

  /// Shows the files, with that of a path marked.
  list(path = this.file()?.path) {
    this.files = this.page.store.list(this.filter().pattern);
    const cells = ({ name, size, time }) => [name, sizeText(size), timeText(time)];
    this.table.setRows(this.files.map(file => cells(file).join('\t')));
    this.none.hidden = this.files.length > 0;
    this.table.element.hidden = !this.files.length;
    this.table.mark(Math.max(0, this.files.findIndex(file => file.path === path)));
    this.marked(false);
  }

  marked(byUser = true) {
    const file = this.file();
    this.download.disabled = this.removal.disabled = !file;
    if (!this.described.save) this.ok.disabled = !file;
    if (this.described.save && byUser && file) this.name.value = file.name;
    if (this.preview) this.preview.textContent = file ? this.previewOf(file.path) : '';
  }

  typed() {
    const place = this.files.findIndex(file => file.name === this.name.value);
    if (place < 0) return;
    this.table.mark(place);
    this.marked(false);
  }

  /// Of a file to save: with the type's ending unless it has one.
  pathTyped() {
    const name = this.name.value.trim().replace(/[/\\]/g, '_');
    if (!name) return '';
    const { extension } = this.filter();
    return FOLDER + (name.includes('.') || !extension ? name : name + '.' + extension.replace(/^\./, ''));
  }

  accept() {
    const path = this.described.save ? this.pathTyped() : this.file()?.path;
    if (!path) return this.box.first.focus();
    const { exists } = this.page.program.FS.analyzePath(path);
    if (!this.described.save || !exists) return this.finish(path);
    this.ask('Save', `${path.slice(FOLDER.length)} is there already. Replace it?`, '&Replace',
             () => this.finish(path));
  }

  finish(path) {
    this.done({ path, filter: this.types.selectedIndex, fields: this.edits.map(edit => edit.value) });
  }

  /// A question on top, whose answer is no unless the user chooses the other one.
  ask(title, text, yes, act) {
    const question = wordsBox(title, text, 'Question', [yes, 'Cancel'], answer => {
      question.close();
      if (answer === 0) act();
    }, 1);
    question.open(true);
  }

  remove() {
    const { path, name } = this.file();
    this.ask('Remove', `Remove ${name} from this page? Only a copy that you have downloaded stays.`,
             '&Remove', () => {
               this.page.store.remove(path);
               this.list();
             });
  }

  async bring() {
    const paths = await this.page.files.pick(this.filter().pattern);
    if (!paths.length || !this.box.isOpen) return;
    this.list(paths[0]);
    if (this.file()?.path === paths[0]) this.marked();
    if (!this.described.save) this.finish(paths[0]);
  }
}
