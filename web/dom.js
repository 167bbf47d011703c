// Small DOM helpers: every text goes in as textContent, so nothing from the phone becomes markup.

export function el(tag, className = '', text = null) {
  const node = document.createElement(tag);
  if (className) {
    node.className = className;
  }
  if (text !== null && text !== undefined) {
    node.textContent = String(text);
  }
  return node;
}

export function append(parent, ...children) {
  for (const child of children) {
    if (child) {
      parent.append(child);
    }
  }
  return parent;
}

export function textOf(value) {
  return typeof value === 'string' ? value : '';
}
