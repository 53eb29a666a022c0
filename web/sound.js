// The sound: fills the ring of the worklet that plays it, and tells how far that has come.

const SAMPLE_BYTES = 2;
const QUANTUM = 128; // frames that a worklet is asked for at a time
const RATE = 48000; // of the machine
const USUAL_LEAD = 0.06; // seconds, until the program places the device

export class Sound {
  constructor(page) {
    this.page = page;
    this.context = null;
    this.reason = '';
    const touched = () => this.follow();
    for (const act of ['pointerdown', 'pointerup', 'keydown']) addEventListener(act, touched, true);
    document.addEventListener('visibilitychange', touched);
  }

  problem() { return this.reason; }

  open() {
    this.close();
    try {
      this.context = new AudioContext({ latencyHint: 'interactive', sampleRate: RATE });
    } catch {
      try { // one that has its own rate only
        this.context = new AudioContext({ latencyHint: 'interactive' });
      } catch (problem) {
        this.reason = problem.message;
        return false;
      }
    }
    if (!this.context.audioWorklet) {
      this.reason = 'Browsers play sound only on pages with a secure address (https).';
      this.close();
      return false;
    }
    this.context.onstatechange = () => this.stateChanged();
    this.modules = this.context.audioWorklet.addModule(new URL('sound-worklet.js', import.meta.url));
    this.modules.catch(problem => { this.reason = problem.message; });
    return true;
  }

  close() {
    if (this.context) {
      this.context.onstatechange = null;
      this.context.close();
    }
    this.context = this.node = null;
    this.wanted = this.lost = this.running = false;
  }

  createRing(bytes, rate) {
    const { context } = this;
    if (!context || context.state === 'closed') return false;
    this.ringBytes = bytes;
    this.rate = rate;
    this.lead = USUAL_LEAD * rate * SAMPLE_BYTES; // of what is written over what is taken
    this.written = 0;
    this.dry = 0;
    if (this.node) this.node.disconnect();
    this.node = null;
    this.running = false;
    this.setBase(0);
    this.modules.then(() => {
      if (context !== this.context) return;
      const processorOptions = { samples: bytes / SAMPLE_BYTES, rate };
      this.node = new AudioWorkletNode(context, 'ring', {
        numberOfInputs: 0, outputChannelCount: [1], processorOptions });
      this.node.port.onmessage = ({ data }) => { this.dry = data; };
      this.node.connect(context.destination);
      this.stateChanged();
    }).catch(problem => {
      this.reason = problem.message;
      this.lost = true;
    });
    return true;
  }

  isLost() { return !this.context || this.lost || this.context.state === 'closed'; }
  restore() {
    if (!this.lost) return;
    const { wanted } = this;
    if (!this.open()) return;
    this.createRing(this.ringBytes, this.rate);
    this.play(wanted);
  }

  play(on) {
    this.wanted = on;
    this.follow();
  }

  /// Browsers begin with sound only when the page has been touched; a hidden page is silent.
  follow() {
    const { context } = this;
    if (!context || context.state === 'closed') return;
    const on = this.wanted && !document.hidden;
    if (on === (context.state === 'running')) return;
    if (on && navigator.userActivation && !navigator.userActivation.hasBeenActive) return; // in vain
    (on ? context.resume() : context.suspend()).catch(() => {});
  }

  stateChanged() {
    const running = this.node !== null && this.context.state === 'running';
    if (running && !this.running) this.begin();
    this.running = running;
    this.follow();
  }

  /// The device goes on at its distance behind what is written. The machine may have gone on without
  /// it: what came meanwhile is not heard any more.
  begin() {
    if (this.missed) this.node.port.postMessage({ clear: true, at: this.written / SAMPLE_BYTES });
    this.missed = false;
    this.seek((this.written + this.ringBytes - this.lead) % this.ringBytes);
  }

  blockBytes() {
    const { baseLatency, sampleRate } = this.context;
    return Math.max(Math.round((baseLatency || 0) * sampleRate), QUANTUM) * SAMPLE_BYTES;
  }

  frame() { return Math.round(this.context.currentTime * this.context.sampleRate); }

  setBase(offset) {
    this.base = offset;
    this.baseFrame = this.frame();
  }

  /// In bytes, from an offset in the ring on without wrapping; -1 while nothing is being taken.
  position() {
    if (!this.running) return -1;
    const samples = Math.floor((this.frame() - this.baseFrame) * this.rate / this.context.sampleRate);
    return this.base + samples * SAMPLE_BYTES;
  }

  /// The worklet hears at which frame the device is there, so that both know the same position.
  seek(offset) {
    this.setBase(offset);
    if (this.node) this.node.port.postMessage({ frame: this.baseFrame, at: offset / SAMPLE_BYTES });
  }

  write(offset, bytes) {
    this.written = (offset + bytes.length) % this.ringBytes;
    if (!this.running) {
      this.missed = true;
      return;
    }
    this.lead = (this.written + this.ringBytes - this.position() % this.ringBytes) % this.ringBytes;
    const samples = new Int16Array(bytes.slice().buffer);
    this.node.port.postMessage({ samples, at: offset / SAMPLE_BYTES }, [samples.buffer]);
  }

  underruns() { return this.dry; }
}
