// Plays a ring of samples, on the thread of the browser's sound. What has been played is silent
// afterwards, so that the last second is not repeated while the machine stands still.

const FULL_SCALE = 32768;

class Ring extends AudioWorkletProcessor {
  constructor({ processorOptions: { samples, rate } }) {
    super();
    this.ring = new Int16Array(samples);
    this.step = rate / sampleRate; // the ring's samples for one of the device's
    this.frame = currentFrame; // at which the ring's sample `at` is due
    this.at = 0;
    this.written = 0;
    this.dry = true;
    this.underruns = 0;
    this.port.onmessage = ({ data }) => this.told(data);
  }

  told({ clear, samples, frame, at }) {
    if (clear) {
      this.ring.fill(0);
      this.written = at;
    } else if (samples) {
      this.ring.set(samples, at);
      this.written = (at + samples.length) % this.ring.length;
    } else {
      this.frame = frame;
      this.at = at;
    }
  }

  process(inputs, [[out]]) {
    const { ring, step } = this;
    const size = ring.length;
    let at = this.at + (currentFrame - this.frame) * step;
    at -= Math.floor(at / size) * size;
    this.watch((this.written - Math.floor(at) + size) % size, out.length * step);
    for (let n = 0; n < out.length; ++n) {
      const whole = Math.floor(at);
      const here = ring[whole];
      const next = ring[(whole + 1) % size];
      out[n] = (here + (next - here) * (at - whole)) / FULL_SCALE;
      at += step;
      if (at >= size) at -= size;
      for (let passed = whole; passed !== Math.floor(at); passed = (passed + 1) % size) ring[passed] = 0;
    }
    return true;
  }

  // Tells the page when the device has come to the end of what is written.
  watch(ahead, needed) {
    const dry = ahead < needed;
    if (dry && !this.dry) this.port.postMessage(++this.underruns);
    this.dry = dry;
  }
}

registerProcessor('ring', Ring);
