// Boxes with a message or a question.

export class Dialogs {
  constructor(page) { this.page = page; }
  message(box, title, text) { console.log(title, text); this.answer(box, 0); }
  choose(box) { this.answer(box, -1); }
  about(box) { this.answer(box, 0); }
  openPage(url) { return window.open(url, '_blank', 'noopener') !== null; }
  answer(box, answer) {
    setTimeout(() => {
      this.page.program._tarvelin_answer(box, answer);
      this.page.turns.wake();
    });
  }
}
