// Boxes with a message, a question, the program's name or files. One is shown at a time; others wait
// until it is answered.

import { Box, wordsBox } from './box.js';
import { FileBox } from './file-box.js';
import { make } from './labels.js';

const NO_ANSWER = -1;
const ICONS = ['', 'Information', 'Warning', 'Error']; // by MessageIcon

export class Dialogs {
  constructor(page) {
    this.page = page;
    this.waiting = [];
    this.shown = null;
  }

  // ---- for the program

  message(number, title, text, icon) { this.ask(number, title, text, ICONS[icon], ['OK'], 0); }
  choose(number, title, text, answers) { this.ask(number, title, text, 'Question', answers, NO_ANSWER); }

  about(number, title, words, link, target) {
    this.queue(() => {
      const done = () => this.answer(number, 0);
      const box = new Box(title, { onEscape: done });
      box.element.classList.add('about');
      const page = make('a', { href: this.addressOf(target), target: '_blank', rel: 'noopener' }, link);
      box.contents.append(make('img', { src: 'icons/tarvelin.svg', alt: '', width: 64, height: 64 }),
                          make('h3', {}, words[0]), make('p', {}, words.slice(1).join('\n')), page);
      box.addButtons(box.button('OK', done));
      box.setDefault(box.footer.firstElementChild);
      return box;
    });
  }

  chooseFile(number, described) {
    this.queue(() => new FileBox(this.page, described, {
      preview: path => this.preview(number, path),
      done: choice => this.finish(() => this.answerFile(number, choice)),
    }).box);
  }

  openPage(url) { return window.open(this.addressOf(url), '_blank', 'noopener') !== undefined; }

  // ---- one after another

  ask(number, title, text, icon, answers, closed) {
    const done = answer => this.answer(number, answer === NO_ANSWER ? closed : answer);
    this.queue(() => wordsBox(title, text, icon, answers, done));
  }

  queue(makeBox) {
    this.waiting.push(makeBox);
    if (!this.shown) this.next();
  }

  next() {
    const makeBox = this.waiting.shift();
    if (!makeBox) return;
    this.shown = makeBox();
    this.shown.open(true, this.shown.first);
  }

  finish(tell) {
    this.shown.close();
    this.shown = null;
    tell();
    this.page.turns.wake();
    if (!this.shown) this.next();
  }

  answer(number, answer) { this.finish(() => this.page.program._tarvelin_answer(number, answer)); }

  answerFile(number, choice) {
    const { path, filter, fields } = choice ?? { path: '', filter: 0, fields: [] };
    const text = [path, ...fields].join('\n');
    this.page.text(text, place => this.page.program._tarvelin_file_answer(number, place, filter));
  }

  preview(number, path) {
    const { program } = this.page;
    let words = '';
    this.page.text(path, place => {
      words = program.UTF8ToString(program._tarvelin_file_preview(number, place));
    });
    return words;
  }

  /// Manuals are beside the page.
  addressOf(url) {
    const [, ours] = /^file:\/\/\/?program\/(.*)$/.exec(url) ?? [];
    return new URL(ours ?? url, document.baseURI).href;
  }
}
