// Rows of cells, one of which is chosen; also a list box, which is one without headings.

import { make } from './labels.js';
import { newId } from './box.js';

const isNumber = cell => /^\d+$/.test(cell);

export class Table {
  /// width: characters; lines: rows that are seen. keepsRow: new rows leave the row chosen.
  constructor({ headings, width, lines, keepsRow, name }) {
    this.columns = headings.length;
    this.keepsRow = keepsRow;
    this.row = -1;
    this.onChoice = this.onActivation = () => {};
    const isList = !headings.length;
    this.rowRole = isList ? 'option' : 'row';
    this.body = make('tbody', { role: isList ? 'presentation' : 'rowgroup' });
    this.table = make('table', { role: isList ? 'listbox' : 'grid', tabindex: '0', 'aria-label': name },
                      this.body);
    if (!isList) {
      this.headings = headings.map(text => make('th', { scope: 'col', role: 'columnheader' }, text));
      this.table.prepend(make('thead', { role: 'rowgroup' }, make('tr', { role: 'row' }, ...this.headings)));
    }
    this.element = make('div', { class: isList ? 'table list' : 'table' }, this.table);
    this.element.style.width = `min(100%, ${width}ch + 28px)`;
    this.element.style.setProperty('--lines', String(lines + (isList ? 0 : 1)));
    this.table.addEventListener('keydown', event => this.key(event));
    this.body.addEventListener('pointerdown', event => {
      if (event.pointerType === 'mouse') this.choose(this.rowAt(event.target));
    });
    // A finger that touches a row may be about to scroll.
    this.body.addEventListener('click', event => this.choose(this.rowAt(event.target)));
    this.body.addEventListener('dblclick', () => this.onActivation());
  }

  setRows(rows) {
    const before = this.keepsRow ? Math.max(this.row, 0) : 0;
    while (this.body.rows.length > rows.length) this.body.lastChild.remove();
    rows.forEach((row, place) => this.setCells(place, row.split('\t')));
    this.mark(Math.min(before, rows.length - 1));
  }

  setCells(place, cells) {
    const count = Math.max(this.columns, cells.length);
    const row = this.body.rows[place] ??
                this.body.appendChild(make('tr', { role: this.rowRole, id: newId() }));
    while (row.cells.length > count) row.lastChild.remove();
    for (let column = 0; column < count; ++column) {
      const role = this.columns ? 'gridcell' : 'presentation';
      const cell = row.cells[column] ?? row.appendChild(make('td', { role }));
      const text = cells[column] ?? '';
      if (cell.textContent !== text) cell.textContent = text;
      const number = this.columns > 0 && isNumber(text);
      cell.classList.toggle('number', number);
      if (number) this.headings[column]?.classList.add('number');
    }
  }

  rowAt(target) { return [...this.body.rows].indexOf(target.closest('tr')); }

  /// Without telling anybody.
  mark(row) {
    this.row = row < this.body.rows.length ? row : -1;
    [...this.body.rows].forEach((other, place) => {
      other.setAttribute('aria-selected', String(place === this.row));
    });
    const chosen = this.body.rows[this.row];
    if (!chosen) return this.table.removeAttribute('aria-activedescendant');
    this.table.setAttribute('aria-activedescendant', chosen.id);
    this.show(chosen);
  }

  show(row) {
    const head = this.table.tHead?.offsetHeight ?? 0;
    const { scrollTop, clientHeight } = this.element;
    if (row.offsetTop - head < scrollTop) this.element.scrollTop = row.offsetTop - head;
    const excess = row.offsetTop + row.offsetHeight - scrollTop - clientHeight;
    if (excess > 0) this.element.scrollTop = scrollTop + excess;
  }

  choose(row) {
    const limited = Math.max(0, Math.min(row, this.body.rows.length - 1));
    if (row < 0 && this.row < 0 || limited === this.row || !this.body.rows.length) return;
    this.mark(limited);
    this.onChoice();
  }

  key(event) {
    const height = this.body.rows[0]?.offsetHeight || 20;
    const page = Math.max(1, Math.floor(this.element.clientHeight / height) - 1);
    const steps = { ArrowUp: -1, ArrowDown: 1, PageUp: -page, PageDown: page, Home: -1e6, End: 1e6 };
    if (event.key in steps && !event.altKey) {
      event.preventDefault();
      this.choose(Math.max(0, this.row + steps[event.key]));
    } else if (event.key === 'Enter' && this.columns && this.row >= 0) {
      event.preventDefault(); // and not the default button
      this.onActivation();
    } else if (event.key.length === 1 && event.key !== ' ' && !event.altKey && !event.ctrlKey) {
      this.toLetter(event.key.toLowerCase());
    }
  }

  toLetter(letter) {
    const { length } = this.body.rows;
    for (let n = 1; n <= length; ++n) {
      const place = (this.row + n) % length;
      if (this.body.rows[place].textContent.toLowerCase().startsWith(letter)) return this.choose(place);
    }
  }
}
