// The picture tube, by WebGL 2 on a canvas over that of the picture.

const SAMPLE = 16; // of so many pictures the time of one is taken
const LARGEST = 200; // letters of the graphics processor's answer

export class Tube {
  constructor(page) {
    this.page = page;
    this.canvas = document.getElementById('tube');
    this.canvas.addEventListener('webglcontextlost', event => {
      event.preventDefault(); // it may come back
      this.tell(0);
    });
    this.canvas.addEventListener('webglcontextrestored', () => {
      this.prepare();
      this.tell(1);
    });
  }

  tell(restored) {
    this.page.program._tarvelin_tube_lost(restored);
    this.page.turns.wake();
  }

  /// Why there is none; nothing when it is ready.
  start() {
    this.gl ??= this.canvas.getContext('webgl2', {
      alpha: false, antialias: false, depth: false, preserveDrawingBuffer: true,
    });
    if (!this.gl) return 'The browser has no WebGL 2';
    if (this.gl.isContextLost()) return 'The graphics processor does not answer';
    this.prepare();
    return undefined;
  }

  /// All that is kept in the context.
  prepare() {
    const { gl } = this;
    this.took = this.drawTime = this.drawn = 0;
    this.programs = [];
    this.targets = {};
    gl.bindVertexArray(gl.createVertexArray());
    gl.enable(gl.SCISSOR_TEST);
    gl.pixelStorei(gl.UNPACK_ALIGNMENT, 4);
  }

  stop() {
    if (!this.gl || this.gl.isContextLost()) return;
    for (const program of this.programs) this.gl.deleteProgram(program);
    for (const { texture, frame } of Object.values(this.targets)) {
      this.gl.deleteTexture(texture);
      this.gl.deleteFramebuffer(frame);
    }
    this.canvas.width = this.canvas.height = 1;
    this.prepare();
  }

  /// Texts of vertices and fragments, in turns, and the size of the glow.
  compile(texts, glowWidth, glowHeight) {
    const { gl } = this;
    if (gl.isContextLost()) return false;
    for (const program of this.programs) gl.deleteProgram(program);
    this.programs = [];
    for (let n = 0; n < texts.length; n += 2) {
      const program = gl.createProgram();
      this.attach(program, gl.VERTEX_SHADER, texts[n]);
      this.attach(program, gl.FRAGMENT_SHADER, texts[n + 1]);
      gl.linkProgram(program);
      if (!gl.getProgramParameter(program, gl.LINK_STATUS)) {
        console.error(gl.getProgramInfoLog(program).slice(0, LARGEST));
        return false;
      }
      gl.useProgram(program);
      gl.uniform1i(gl.getUniformLocation(program, 'picture'), 0);
      gl.uniform1i(gl.getUniformLocation(program, 'glow'), 1);
      this.programs.push(program);
    }
    this.glow = [glowWidth, glowHeight];
    return true;
  }

  attach(program, kind, text) {
    const { gl } = this;
    const shader = gl.createShader(kind);
    gl.shaderSource(shader, text);
    gl.compileShader(shader);
    if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS)) {
      console.error((gl.getShaderInfoLog(shader) || '').slice(0, LARGEST));
    }
    gl.attachShader(program, shader);
    gl.deleteShader(shader);
  }

  /// A texture of that size and what draws into it.
  target(name, width, height) {
    const { gl } = this;
    const kept = this.targets[name];
    if (kept && kept.width === width && kept.height === height) return kept;
    const target = kept || { texture: gl.createTexture(), frame: gl.createFramebuffer() };
    this.targets[name] = Object.assign(target, { width, height });
    gl.bindTexture(gl.TEXTURE_2D, target.texture);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA8, width, height, 0, gl.RGBA, gl.UNSIGNED_BYTE, null);
    for (const filter of [gl.TEXTURE_MIN_FILTER, gl.TEXTURE_MAG_FILTER]) {
      gl.texParameteri(gl.TEXTURE_2D, filter, gl.LINEAR);
    }
    for (const wrap of [gl.TEXTURE_WRAP_S, gl.TEXTURE_WRAP_T]) {
      gl.texParameteri(gl.TEXTURE_2D, wrap, gl.CLAMP_TO_EDGE);
    }
    gl.bindFramebuffer(gl.FRAMEBUFFER, target.frame);
    gl.framebufferTexture2D(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, target.texture, 0);
    return target;
  }

  run(stage, from, frame, width, height, first, end) {
    const { gl } = this;
    gl.bindFramebuffer(gl.FRAMEBUFFER, frame);
    gl.viewport(0, 0, width, height);
    gl.scissor(0, first, width, end - first);
    gl.useProgram(this.programs[stage]);
    gl.bindTexture(gl.TEXTURE_2D, from.texture);
    gl.drawArrays(gl.TRIANGLES, 0, 3);
  }

  /// The picture's rows that have changed, into that area of the screen; of glow and face the rows
  /// that change with them.
  draw([left, top, width, height], fromWidth, fromHeight, lines, rows, bytes) {
    const { gl, canvas } = this;
    const begin = this.isSampled() ? this.settled() : 0;
    const [first, end, glowFirst, glowEnd, faceFirst, faceEnd] = rows;
    if (canvas.width !== width || canvas.height !== height) {
      canvas.width = width;
      canvas.height = height;
    }
    gl.activeTexture(gl.TEXTURE1);
    const across = this.target('across', ...this.glow);
    const down = this.target('down', ...this.glow);
    gl.bindTexture(gl.TEXTURE_2D, down.texture);
    gl.activeTexture(gl.TEXTURE0);
    const picture = this.target('picture', fromWidth, fromHeight);
    gl.bindTexture(gl.TEXTURE_2D, picture.texture);
    gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, first, fromWidth, end - first, gl.RGBA,
                     gl.UNSIGNED_BYTE, bytes);
    const face = this.programs[2];
    gl.useProgram(face);
    gl.uniform2f(gl.getUniformLocation(face, 'target'), width, height);
    gl.uniform1f(gl.getUniformLocation(face, 'lines'), lines);
    this.run(0, picture, across.frame, ...this.glow, glowFirst, glowEnd);
    this.run(1, across, down.frame, ...this.glow, glowFirst, glowEnd);
    // The canvas's first row is the lowest one.
    this.run(2, picture, null, width, height, height - faceEnd, height - faceFirst);
    if (begin) this.took = (this.settled() - begin) * 1000;
    this.drawTime += this.took;
    this.place(left, top, width, height);
  }

  isSampled() { return ++this.drawn % SAMPLE === 2; } // not the first one, which compiles
  /// The time when the graphics processor has done everything.
  settled() {
    this.gl.readPixels(0, 0, 1, 1, this.gl.RGBA, this.gl.UNSIGNED_BYTE, new Uint8Array(4));
    return performance.now();
  }

  place(...area) {
    const place = area.join();
    if (place === this.placed) return;
    this.placed = place;
    const [left, top, width, height] = area.map(side => side / devicePixelRatio + 'px');
    Object.assign(this.canvas.style, { left, top, width, height, visibility: 'visible' });
    this.page.panes.blacken(0, 0, 0, 0, 0);
  }
  hide() {
    this.placed = '';
    this.canvas.style.visibility = 'hidden';
  }

  takeDrawTime() {
    const took = this.drawTime;
    this.drawTime = 0;
    return took;
  }
}
