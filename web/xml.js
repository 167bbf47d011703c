// Indents a received XML document for reading; the result is plain text, shown as text.

const INDENT = '  ';

// Returns the document indented one element a line, or the text unchanged when it is not XML.
export function prettyXml(source) {
  if (typeof source !== 'string' || source.trim() === '') {
    return '';
  }
  const parsed = new DOMParser().parseFromString(source, 'application/xml');
  if (parsed.getElementsByTagName('parsererror').length > 0) {
    return source;
  }
  const declaration = source.trimStart().match(/^<\?xml[^?]*\?>/);
  const lines = declaration ? [declaration[0]] : [];
  for (const node of parsed.childNodes) {
    writeNode(node, 0, lines);
  }
  return lines.join('\n');
}

function writeNode(node, depth, lines) {
  const pad = INDENT.repeat(depth);
  switch (node.nodeType) {
    case Node.ELEMENT_NODE:
      writeElement(node, depth, lines);
      break;
    case Node.TEXT_NODE:
    case Node.CDATA_SECTION_NODE: {
      const text = node.nodeValue.trim();
      if (text) {
        lines.push(pad + escapeText(text));
      }
      break;
    }
    case Node.COMMENT_NODE:
      lines.push(`${pad}<!--${node.nodeValue}-->`);
      break;
    case Node.PROCESSING_INSTRUCTION_NODE:
      lines.push(`${pad}<?${node.target} ${node.data}?>`);
      break;
    default:
      break;
  }
}

function writeElement(element, depth, lines) {
  const pad = INDENT.repeat(depth);
  const open = `<${element.nodeName}${attributes(element)}`;
  const children = Array.from(element.childNodes).filter(
    (child) => !(child.nodeType === Node.TEXT_NODE && child.nodeValue.trim() === ''));
  if (children.length === 0) {
    lines.push(`${pad}${open}/>`);
  } else if (children.length === 1 && children[0].nodeType === Node.TEXT_NODE) {
    lines.push(`${pad}${open}>${escapeText(children[0].nodeValue)}</${element.nodeName}>`);
  } else {
    lines.push(`${pad}${open}>`);
    children.forEach((child) => writeNode(child, depth + 1, lines));
    lines.push(`${pad}</${element.nodeName}>`);
  }
}

function attributes(element) {
  return Array.from(element.attributes)
    .map((attribute) => ` ${attribute.name}="${escapeAttribute(attribute.value)}"`)
    .join('');
}

function escapeText(text) {
  return text.replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;');
}

function escapeAttribute(text) {
  return escapeText(text).replace(/"/g, '&quot;');
}
