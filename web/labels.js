// Texts of menus and forms: "&" stands before the access key, "&&" for one that is shown.

/// In a menu, a key hint follows a tab.
export function split(text) {
  const [words, hint = ''] = text.split('\t');
  let plain = '';
  let place = -1;
  for (let n = 0; n < words.length; ++n) {
    if (words[n] === '&' && words[++n] !== '&' && place < 0) place = plain.length;
    plain += words[n] ?? '';
  }
  return { plain, place, key: place < 0 ? '' : (plain[place] ?? '').toLowerCase(), hint };
}

export const plain = text => split(text).plain;

/// Shows the words in the element, the access key in a <u>.
export function write(element, text) {
  const { plain, place } = split(text);
  if (place < 0) return void (element.textContent = plain);
  const letter = make('u', {}, plain[place] ?? '');
  element.replaceChildren(plain.slice(0, place), letter, plain.slice(place + 1));
}

/// An element with attributes and children; attributes that are null or false are left out.
export function make(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [attribute, value] of Object.entries(attributes)) {
    if (value !== null && value !== undefined && value !== false) {
      element.setAttribute(attribute, value === true ? '' : value);
    }
  }
  if (name === 'button') element.type = 'button';
  element.append(...children);
  return element;
}

export const labelled = (name, attributes, text) => {
  const element = make(name, attributes);
  write(element, text);
  return element;
};

/// Moves the focus back to where it was, or to the picture.
export function refocus(element) {
  const usable = element && element.isConnected && element !== document.body;
  (usable ? element : document.getElementById('picture')).focus({ preventScroll: true });
}
