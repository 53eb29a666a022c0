// Joysticks and game controllers, asked for when the program looks.

const [LETTERED, PLAYSTATION, NUMBERED] = [0, 1, 2]; // PadKind
const PLAIN = [4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15]; // PadInput by button
const STANDARD = [4, 5, 7, 8, 6, 9, 10, 11, 12, 13, 14, 15];
const [UP, DOWN, LEFT, RIGHT] = [12, 13, 14, 15]; // buttons of the standard layout
const HAT = 9; // axis of a plain joystick, in eighths of a turn from -1, the top, to 1
const HALF = 32767;

const position = value => Math.round((Math.max(Math.min(value || 0, 1), -1) + 1) * 65535 / 2);

export class Pads {
  constructor(page) {
    for (const kind of ['gamepadconnected', 'gamepaddisconnected']) {
      addEventListener(kind, () => page.turns.wake());
    }
  }
  get(number) {
    const pad = navigator.getGamepads?.()[number];
    return pad && pad.connected ? pad : null;
  }
  /// Up to the last place that is taken.
  count() {
    return [...navigator.getGamepads?.() || []].reduce((n, pad, at) => (pad ? at + 1 : n), 0);
  }
  plugged(number) { return this.get(number) !== null; }
  name(number) { return this.get(number)?.id || ''; }
  kind(number) {
    const pad = this.get(number);
    if (!pad) return LETTERED;
    if (pad.mapping !== 'standard') return NUMBERED;
    return /054c|playstation|dualshock|dualsense/i.test(pad.id) ? PLAYSTATION : LETTERED;
  }
  /// Buttons, y and x in 16 bits each; -1 for none.
  read(number) {
    const pad = this.get(number);
    if (!pad) return -1;
    const isStandard = pad.mapping === 'standard';
    const down = n => pad.buttons[n]?.pressed || pad.buttons[n]?.value > 0.5;
    let [x, y] = pad.axes.slice(0, 2).map(position);
    x ??= HALF;
    y ??= HALF;
    const eighth = isStandard || pad.axes[HAT] === undefined ? -1
      : Math.round((pad.axes[HAT] + 1) * 3.5);
    const turned = (...eighths) => eighths.includes(eighth);
    const pushed = (button, ...eighths) => (isStandard ? down(button) : turned(...eighths));
    if (pushed(LEFT, 5, 6, 7)) x = 0;
    if (pushed(RIGHT, 1, 2, 3)) x = 65535;
    if (pushed(UP, 7, 0, 1)) y = 0;
    if (pushed(DOWN, 3, 4, 5)) y = 65535;
    let buttons = 0;
    (isStandard ? STANDARD : PLAIN).forEach((input, n) => {
      if (down(n)) buttons += 2 ** input;
    });
    return (buttons * 65536 + y) * 65536 + x;
  }
}
