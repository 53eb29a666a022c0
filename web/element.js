// <tarvelin-machine>: a Colour Genie in a page of yours. The attributes are in the manual's page about
// the browser.

const PARAMETERS = { run: 'run', keyboard: 'keyboard', tube: 'tube', scale: 'scale', muted: 'mute' };
const OTHERS = ['basic', 'link', 'width', 'height', 'title'];
const ALLOWED = 'autoplay; fullscreen; gamepad; clipboard-read; clipboard-write; keyboard-map';

/// A listing as the end of an address, as the program's own links have it.
async function linkOf(listing) {
  const packed = new Blob([listing]).stream().pipeThrough(new CompressionStream('deflate-raw'));
  const bytes = new Uint8Array(await new Response(packed).arrayBuffer());
  const digits = btoa(Array.from(bytes, byte => String.fromCharCode(byte)).join(''));
  return '#basic=' + digits.replace(/\+/g, '-').replace(/\//g, '_').replace(/=+$/, '');
}

class TarvelinMachine extends HTMLElement {
  static observedAttributes = [...Object.keys(PARAMETERS), ...OTHERS];

  connectedCallback() { this.change(); }
  attributeChangedCallback() { this.change(); }

  /// Once for all attributes that change at a time.
  change() {
    if (this.waits) return;
    this.waits = true;
    queueMicrotask(() => {
      this.waits = false;
      if (this.isConnected) this.show();
    });
  }

  async show() {
    const address = new URL('./', import.meta.url);
    for (const [attribute, parameter] of Object.entries(PARAMETERS)) {
      if (!this.hasAttribute(attribute)) continue;
      let value = this.getAttribute(attribute) || '1';
      // A file is meant from the page that names it.
      if (attribute === 'run') value = new URL(value, document.baseURI).href;
      address.searchParams.set(parameter, value);
    }
    const listing = this.getAttribute('basic');
    if (listing) address.hash = await linkOf(listing);
    else if (this.hasAttribute('link')) address.hash = this.getAttribute('link').replace(/^.*#/, '');
    const width = this.getAttribute('width') || 640;
    const height = this.getAttribute('height') || 560;
    this.style.display ||= 'inline-block';
    this.frame ||= this.makeFrame();
    this.frame.title = this.title || 'Colour Genie';
    this.frame.width = width;
    this.frame.height = height;
    if (this.frame.src !== address.href) this.frame.src = address.href;
  }

  makeFrame() {
    const frame = document.createElement('iframe');
    frame.allow = ALLOWED;
    frame.style.cssText = 'border: 0; max-width: 100%; display: block';
    this.attachShadow({ mode: 'open' }).append(frame);
    return frame;
  }
}

customElements.define('tarvelin-machine', TarvelinMachine);
