// The menu bar and the menus beside it, from the program's entries. Where there is little room or a
// finger is the pointer, one button opens a panel with all of them, which unfold below each other.

import { labelled, make, refocus, split } from './labels.js';

const GREYED = 1;
const HIDDEN = 2;
const NARROW = matchMedia('(max-width: 719px), (pointer: coarse)');
const SUBMENU_DELAY = 180; // ms that the pointer rests on an item
const EDGE = 4;            // pixels left free at the edges of the page

const isItem = element => element.getAttribute('role')?.startsWith('menuitem');
const isSubmenu = entry => entry.children.length > 0;

export class Menu {
  constructor(page) {
    this.page = page;
    this.bar = document.getElementById('menu');
    this.menus = [];
    this.items = new Map(); // entries by their ids
    this.lists = [];        // open menus, each with the item that opened it
    this.active = false;
    this.timer = 0;
    this.backdrop = make('div', { class: 'menu-backdrop' });
    this.backdrop.addEventListener('pointerdown', event => {
      event.preventDefault();
      if (event.pointerType === 'mouse') this.leave();
    });
    this.backdrop.addEventListener('click', () => this.leave()); // a finger's end of touch is nobody else's
    this.bar.addEventListener('keydown', event => this.keyInMenu(event));
    this.bar.addEventListener('focusin', () => this.enter());
    this.bar.addEventListener('focusout', event => {
      if (event.relatedTarget && !this.bar.contains(event.relatedTarget)) this.leave(false);
    });
    addEventListener('keydown', event => this.keyAnywhere(event), true);
    addEventListener('blur', () => this.leave());
    this.width = innerWidth;
    addEventListener('resize', () => {
      if (this.width !== innerWidth) this.leave();
      this.width = innerWidth;
    });
    NARROW.addEventListener('change', () => this.draw());
  }

  // ---- for the program

  set(entries) {
    this.menus = entries;
    this.items.clear();
    this.draw();
    const index = all => all.forEach(entry => {
      if (entry.id) this.items.set(entry.id, entry);
      entry.checkable = entry.checked;
      index(entry.children);
    });
    index(entries);
  }

  check(id, checked) { this.change(id, { checked, checkable: true }); }
  setText(id, text) { this.change(id, { text }); }
  setState(id, state) { this.change(id, { state }); }

  popup(entries, x, y) {
    this.leave();
    this.enter();
    const client = document.getElementById('client').getBoundingClientRect();
    this.open(entries, null, ({ width, height }) => {
      const bottom = client.top + y;
      return { left: client.left + x, top: bottom > height ? bottom - height : bottom, width };
    });
    this.lists[0].element.focus();
  }

  // ---- the bar

  draw() {
    this.leave();
    const buttons = NARROW.matches ? [this.panelButton()] : this.menus.map(menu => this.title(menu));
    buttons.forEach((button, place) => { button.tabIndex = place ? -1 : 0; });
    this.bar.setAttribute('role', NARROW.matches ? 'navigation' : 'menubar');
    this.bar.replaceChildren(...buttons);
  }

  panelButton() {
    const sign = make('span', { class: 'menu-sign', 'aria-hidden': 'true' });
    const button = make('button', { class: 'menu-button', 'aria-haspopup': 'menu',
      'aria-expanded': 'false' }, sign, 'Menu');
    button.addEventListener('click', () => this.lists.length ? this.leave() : this.openPanel(button));
    return button;
  }

  title(menu) {
    const button = labelled('button', { role: 'menuitem', class: 'menu-title',
      'aria-haspopup': 'menu', 'aria-expanded': 'false' }, menu.text);
    const toggle = () => this.isOpenAt(button) ? this.leave() : this.openMenu(button, menu);
    let pressed = false;
    button.addEventListener('pointerdown', event => {
      if (event.button || event.pointerType !== 'mouse') return;
      event.preventDefault();
      pressed = true;
      toggle();
    });
    button.addEventListener('click', () => {
      if (!pressed) toggle();
      pressed = false;
    });
    button.addEventListener('pointerenter', event => {
      if (event.pointerType !== 'mouse' || !this.active || this.isOpenAt(button)) return;
      this.lists.length ? this.openMenu(button, menu) : button.focus();
    });
    button.addEventListener('focus', () => this.page.program._tarvelin_item_highlighted(0));
    button.entry = menu;
    return button;
  }

  isOpenAt(opener) { return this.lists.some(list => list.opener === opener); }

  openMenu(button, menu, focusFirst = false) {
    this.enter();
    this.closeTo(0);
    button.focus();
    this.page.program._tarvelin_menu_opens();
    this.open(menu.children, button, () => {
      const { left, bottom } = button.getBoundingClientRect();
      return { left, top: bottom };
    });
    if (focusFirst) this.step(this.lists[0].element, null, 1);
  }

  openPanel(button) {
    this.enter();
    this.page.program._tarvelin_menu_opens();
    this.open(this.menus, button, null);
    this.lists[0].element.classList.add('menu-panel');
    this.backdrop.classList.add('veil');
    this.step(this.lists[0].element, null, 1);
  }

  // ---- open menus

  enter() {
    if (this.active) return;
    this.active = true;
    this.before = this.bar.contains(document.activeElement) ? null : document.activeElement;
    this.page.program._tarvelin_menu_loop(1);
    this.page.turns.wake();
  }

  /// Closes all; the focus goes back to where it was unless it has already gone elsewhere.
  leave(takesFocusBack = true) {
    if (!this.active) return;
    this.closeTo(0);
    this.active = false;
    document.documentElement.classList.remove('access-keys');
    if (takesFocusBack) refocus(this.before);
    this.page.program._tarvelin_menu_loop(0);
    this.page.turns.wake();
  }

  /// Opens a list of items at the place that `placeFor` gives for its size.
  open(entries, opener, placeFor) {
    if (!this.lists.length) this.bar.append(this.backdrop);
    const list = make('div', { role: 'menu', class: 'menu-list', tabindex: '-1' });
    if (opener) list.setAttribute('aria-label', split(opener.entry?.text ?? 'Menu').plain);
    this.fill(list, entries);
    this.bar.append(list);
    opener?.setAttribute('aria-expanded', 'true');
    this.lists.push({ element: list, opener });
    if (!placeFor) return;
    const { width, height } = list.getBoundingClientRect();
    const place = placeFor({ width, height });
    const left = Math.max(EDGE, Math.min(place.left, innerWidth - width - EDGE));
    const top = Math.max(EDGE, Math.min(place.top, innerHeight - height - EDGE));
    list.style.left = left + 'px';
    list.style.top = top + 'px';
  }

  closeTo(count) {
    clearTimeout(this.timer);
    while (this.lists.length > count) {
      const { element, opener } = this.lists.pop();
      opener?.setAttribute('aria-expanded', 'false');
      // Not the last word of the focus: it would leave the menu.
      if (element.contains(document.activeElement)) opener?.focus();
      element.remove();
    }
    if (count) return;
    this.backdrop.remove();
    this.backdrop.classList.remove('veil');
  }

  /// A separator stands only between items that are seen.
  fill(list, entries) {
    let separated = true;
    for (const entry of entries) {
      if (entry.state === HIDDEN || (!entry.text && separated)) continue;
      separated = !entry.text;
      list.append(separated ? make('div', { role: 'separator' }) : this.item(entry));
    }
    if (separated && list.lastChild) list.lastChild.remove();
  }

  item(entry) {
    const { hint } = split(entry.text);
    const words = labelled('span', { class: 'menu-words' }, entry.text);
    const element = make('button', {
      role: entry.checkable ? 'menuitemcheckbox' : 'menuitem', tabindex: '-1',
      'aria-checked': entry.checkable ? String(entry.checked) : null,
      'aria-disabled': entry.state === GREYED ? 'true' : null,
      'aria-haspopup': isSubmenu(entry) ? 'menu' : null,
      'aria-expanded': isSubmenu(entry) ? 'false' : null,
      'aria-keyshortcuts': hint && !isSubmenu(entry) ? hint : null,
    }, words);
    if (hint) element.append(make('span', { class: 'menu-hint', 'aria-hidden': 'true' }, hint));
    element.entry = entry;
    entry.element = element;
    element.addEventListener('click', () => this.act(element));
    element.addEventListener('pointerup', event => {
      if (event.pointerType === 'mouse' && event.button === 0 && !isSubmenu(entry)) this.act(element);
    });
    element.addEventListener('pointerenter', event => {
      if (event.pointerType === 'mouse') this.hover(element);
    });
    element.addEventListener('focus', () => {
      this.page.program._tarvelin_item_highlighted(entry.id);
      this.page.turns.wake();
    });
    return element;
  }

  /// An item that changes while its menu is open.
  change(id, what) {
    const entry = this.items.get(id);
    if (!entry) return;
    Object.assign(entry, what);
    const old = entry.element;
    if (!old?.isConnected) return;
    const focused = document.activeElement === old;
    const anew = this.item(entry);
    anew.hidden = entry.state === HIDDEN;
    old.replaceWith(anew);
    if (focused) anew.focus();
  }

  levelOf(element) { return this.lists.findIndex(list => list.element.contains(element)); }

  hover(element) {
    element.focus({ preventScroll: true });
    clearTimeout(this.timer);
    if (NARROW.matches || this.isOpenAt(element)) return;
    this.timer = setTimeout(() => {
      this.closeTo(this.levelOf(element) + 1);
      if (isSubmenu(element.entry)) this.unfold(element);
    }, SUBMENU_DELAY);
  }

  act(element) {
    if (!this.active || element.getAttribute('aria-disabled')) return;
    if (isSubmenu(element.entry)) return this.unfold(element);
    this.leave();
    this.page.program._tarvelin_command(element.entry.id);
    this.page.turns.wake();
  }

  unfold(element, focusFirst = false) {
    if (NARROW.matches) return this.unfoldBelow(element);
    if (!this.isOpenAt(element)) {
      this.closeTo(this.levelOf(element) + 1);
      this.open(element.entry.children, element, ({ width }) => {
        const { left, right, top } = element.getBoundingClientRect();
        const fits = right + width + EDGE <= innerWidth;
        return { left: fits ? right - 2 : left - width + 2, top: top - 5 };
      });
    }
    if (focusFirst) this.step(this.lists.at(-1).element, null, 1);
  }

  unfoldBelow(element) {
    const was = element.getAttribute('aria-expanded') === 'true';
    if (!was) this.page.program._tarvelin_menu_opens();
    for (const other of element.parentElement.querySelectorAll('[aria-expanded="true"]')) {
      other.setAttribute('aria-expanded', 'false');
      other.nextElementSibling.remove();
    }
    if (was) return;
    const group = make('div', { role: 'group', class: 'menu-group',
      'aria-label': split(element.entry.text).plain });
    this.fill(group, element.entry.children);
    element.after(group);
    element.setAttribute('aria-expanded', 'true');
    element.scrollIntoView({ block: 'nearest' });
  }

  // ---- keys

  claims(key, modifiers) { return this.page.program._tarvelin_claims(key, modifiers) !== 0; }

  /// F10 and the access keys of the bar, unless the program takes them for itself.
  keyAnywhere(event) {
    if (event.ctrlKey || event.metaKey || document.querySelector('dialog.modal[open]')) return;
    document.documentElement.classList.toggle('access-keys', event.altKey || this.active);
    const isHidden = !this.bar.offsetHeight; // on the whole screen
    if (NARROW.matches || this.active || isHidden) return;
    if (event.key === 'F10' && !event.altKey && !event.shiftKey && !this.claims(0x79, 0)) {
      this.take(event);
      this.bar.firstElementChild?.focus();
    } else if (event.altKey && !event.shiftKey && /^[a-z]$/i.test(event.key) &&
               !event.target.closest('dialog') && !this.claims(event.key.toUpperCase().charCodeAt(0), 4)) {
      this.openByKey(event);
    }
  }

  openByKey(event) {
    const key = event.key.toLowerCase();
    const button = [...this.bar.children].find(title => title.entry && split(title.entry.text).key === key);
    if (!button) return;
    this.take(event);
    this.openMenu(button, button.entry, true);
  }

  take(event) {
    event.preventDefault();
    event.stopImmediatePropagation();
    document.documentElement.classList.add('access-keys');
  }

  keyInMenu(event) {
    if (event.ctrlKey || event.metaKey) return;
    const element = event.target;
    const list = this.lists[this.levelOf(element)]?.element;
    const act = list ? this.keyInList(event.key, element, list) : this.keyInBar(event.key, element);
    if (act) event.preventDefault();
  }

  keyInBar(key, title) {
    switch (key) {
    case 'ArrowRight': return this.turn(title, 1);
    case 'ArrowLeft': return this.turn(title, -1);
    case 'ArrowDown':
    case 'Enter':
    case ' ':
      title.entry ? this.openMenu(title, title.entry, true) : this.openPanel(title);
      return true;
    case 'Escape': this.leave(); return true;
    case 'Tab': this.leave(false); return false;
    }
    const found = [...this.bar.children].find(other => other.entry && split(other.entry.text).key === key);
    if (found) this.openMenu(found, found.entry, true);
    return found;
  }

  /// To the neighbour in the bar, whose menu opens if another was open.
  turn(title, step) {
    const titles = [...this.bar.children].filter(other => other.entry);
    const next = titles[(titles.indexOf(title) + step + titles.length) % titles.length];
    if (!next) return true;
    this.lists.length ? this.openMenu(next, next.entry, true) : next.focus();
    return true;
  }

  keyInList(key, element, list) {
    const item = isItem(element) ? element : null;
    switch (key) {
    case 'ArrowDown': return this.step(list, item, 1);
    case 'ArrowUp': return this.step(list, item, -1);
    case 'Home': return this.step(list, null, 1);
    case 'End': return this.step(list, null, -1);
    case 'ArrowRight': return this.inward(item);
    case 'ArrowLeft': return this.outward(item);
    case 'Escape': return this.escape();
    case 'Tab': this.leave(); return true;
    case 'Enter':
    case ' ':
      if (item && isSubmenu(item.entry)) this.unfold(item, true);
      else if (item) this.act(item);
      return true;
    }
    return key.length === 1 && this.toLetter(key.toLowerCase(), list, item);
  }

  itemsOf(list) {
    return [...list.querySelectorAll('[role^="menuitem"]')].filter(item => !item.hidden);
  }

  step(list, from, by) {
    const items = this.itemsOf(list);
    if (!items.length) return true;
    const place = from ? items.indexOf(from) + by : by > 0 ? 0 : -1;
    items.at(place % items.length).focus();
    return true;
  }

  inward(item) {
    if (item && isSubmenu(item.entry)) {
      if (item.getAttribute('aria-expanded') !== 'true' || !NARROW.matches) this.unfold(item, true);
    } else if (this.lists[0].opener?.classList.contains('menu-title')) {
      this.turn(this.lists[0].opener, 1);
    }
    return true;
  }

  outward(item) {
    if (NARROW.matches) {
      const opener = item?.parentElement.previousElementSibling;
      const open = item?.getAttribute('aria-expanded') === 'true' ? item : opener;
      if (open?.getAttribute('aria-expanded') !== 'true') return true;
      open.focus();
      this.unfoldBelow(open);
    } else if (this.lists.length > 1) {
      this.closeTo(this.lists.length - 1);
    } else if (this.lists[0].opener) {
      this.turn(this.lists[0].opener, -1);
    }
    return true;
  }

  escape() {
    this.lists.length > 1 || this.lists[0].opener?.classList.contains('menu-title')
      ? this.closeTo(this.lists.length - 1) : this.leave();
    return true;
  }

  /// The access key, or the first letter of items without one.
  toLetter(letter, list, item) {
    const items = this.itemsOf(list);
    const start = items.indexOf(item) + 1;
    const turned = [...items.slice(start), ...items.slice(0, start)];
    const byKey = turned.filter(other => split(other.entry.text).key === letter);
    const found = byKey.length ? byKey : turned.filter(other => {
      const { plain, key } = split(other.entry.text);
      return !key && plain.toLowerCase().startsWith(letter);
    });
    found[0]?.focus();
    if (byKey.length !== 1) return true;
    isSubmenu(byKey[0].entry) ? this.unfold(byKey[0], true) : this.act(byKey[0]);
    return true;
  }
}
