// A PNG of the display as drawn on the page, at twice the phone's resolution.

const PIXEL_RATIO = 2;

// Draws a copy of the display (styles inlined, at scale 1) as an SVG picture onto a canvas.
export async function displayPng(display) {
  const width = Number(display.style.getPropertyValue('--w')) || display.clientWidth;
  const height = Number(display.style.getPropertyValue('--h')) || display.clientHeight;
  const svg = displayAsSvg(display, width, height);
  const image = await loadImage(`data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}`);
  const canvas = document.createElement('canvas');
  canvas.width = width * PIXEL_RATIO;
  canvas.height = height * PIXEL_RATIO;
  canvas.getContext('2d').drawImage(image, 0, 0, canvas.width, canvas.height);
  return new Promise((resolve, reject) => {
    canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error('the canvas gave no PNG'))), 'image/png');
  });
}

export function downloadBlob(blob, name) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

function displayAsSvg(display, width, height) {
  const copy = display.cloneNode(true);
  copy.removeAttribute('id');
  embedPictures(display, copy);
  copy.style.setProperty('--scale', '1');
  copy.classList.add('snapshot-copy');
  copyScrollPositions(display, copy);
  const xhtml = new XMLSerializer().serializeToString(copy);
  const styles = new XMLSerializer().serializeToString(styleElement());
  return `<svg xmlns="http://www.w3.org/2000/svg" width="${width * PIXEL_RATIO}" height="${height * PIXEL_RATIO}" `
    + `viewBox="0 0 ${width} ${height}"><foreignObject x="0" y="0" width="${width}" height="${height}">`
    + `<div xmlns="http://www.w3.org/1999/xhtml">${styles}${xhtml}</div></foreignObject></svg>`;
}

// An SVG drawn from a data address loads nothing from outside, so the phone's pictures go in as
// data addresses of their own (they come from the page's own server, so the canvas may read them).
function embedPictures(original, copy) {
  const originals = original.querySelectorAll('img.picture');
  const copies = copy.querySelectorAll('img.picture');
  originals.forEach((picture, index) => {
    if (!picture.complete || picture.naturalWidth === 0) {
      copies[index].remove();
      return;
    }
    const canvas = document.createElement('canvas');
    canvas.width = picture.naturalWidth;
    canvas.height = picture.naturalHeight;
    canvas.getContext('2d').drawImage(picture, 0, 0);
    copies[index].src = canvas.toDataURL('image/png');
  });
}

// The page's own style rules, so the copy looks like the display (no outside sheets are used).
function styleElement() {
  const rules = [];
  for (const sheet of document.styleSheets) {
    for (const rule of sheet.cssRules) {
      rules.push(rule.cssText);
    }
  }
  const style = document.createElementNS('http://www.w3.org/1999/xhtml', 'style');
  style.textContent = rules.join('\n');
  return style;
}

// A clone starts scrolled to the top; shift scrolled parts so the copy shows what is on screen.
function copyScrollPositions(original, copy) {
  const originals = original.querySelectorAll('.content, .entries-list');
  const copies = copy.querySelectorAll('.content, .entries-list');
  originals.forEach((node, index) => {
    if (node.scrollTop > 0 && copies[index]?.firstElementChild) {
      copies[index].style.setProperty('--scrolled', `${node.scrollTop / scaleOf(original)}`);
      copies[index].classList.add('scrolled');
    }
  });
}

function scaleOf(display) {
  return display.getBoundingClientRect().width / (Number(display.style.getPropertyValue('--w')) || 1);
}

function loadImage(source) {
  return new Promise((resolve, reject) => {
    const image = new Image();
    image.onload = () => resolve(image);
    image.onerror = () => reject(new Error('the display could not be drawn'));
    image.src = source;
  });
}
