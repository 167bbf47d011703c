// Draws the display's snapshot as the phone shows it: screen, popups over it, soft-key labels.
import { append, el, textOf } from './dom.js';

// Heights in display pixels of the fixed strips; the rows share what is left.
const STRIP = { tabBar: 20, title: 24, ticker: 18, softKeys: 22 };

// Label column width in percent for each form proportion the widget library knows.
const LABEL_PERCENT = [40, 50, 60, 75, 25, 15, 0];

const ALERT_ICONS = { 1: '!', 2: '✓', 3: '•', 4: 'i', 5: '⚠' };
const ALERT_NAMES = { 1: 'alarm', 2: 'confirmation', 3: 'other', 4: 'info', 5: 'warning' };

// Remembers each widget's scroll position so a redraw does not jump back to the top.
const scrollTops = new Map();

export function renderDisplay(container, snapshot) {
  const model = snapshot?.model ?? { width: 320, height: 240, visibleLines: 6, softKeyBar: false };
  sizeDisplay(container, model, snapshot);
  const screenArea = el('div', 'screen-area');
  const parts = [screenArea];
  if (!snapshot) {
    screenArea.append(message('Connecting to the phone…'));
  } else if (!snapshot.shown) {
    screenArea.append(idleScreen());
  } else {
    fillScreenArea(screenArea, snapshot, model);
  }
  if (model.softKeyBar) {
    parts.push(softKeyBar(snapshot?.shown ? snapshot.softKeys : [], model.softKeys));
  }
  container.replaceChildren(...parts);
  keepFocusVisible(container, snapshot);
}

function sizeDisplay(container, model, snapshot) {
  const fixed = STRIP.title + (model.softKeyBar ? STRIP.softKeys : 0) + (snapshot?.tabBar ? STRIP.tabBar : 0)
    + (snapshot?.screen?.ticker ? STRIP.ticker : 0);
  const row = (model.height - fixed) / Math.max(1, model.visibleLines);
  container.style.setProperty('--w', model.width);
  container.style.setProperty('--h', model.height);
  container.style.setProperty('--row', row.toFixed(2));
  container.dataset.model = model.softKeyBar ? 'soft-keys' : 'no-soft-keys';
}

function message(text) {
  return el('div', 'display-message', text);
}

function idleScreen() {
  const idle = el('div', 'idle');
  const now = new Date();
  append(idle,
    el('div', 'idle-clock', now.toLocaleTimeString([], { hour: '2-digit', minute: '2-digit' })),
    el('div', 'idle-text', 'Application hidden'),
    el('div', 'idle-hint', 'Press App to show it'));
  return idle;
}

function fillScreenArea(area, snapshot, model) {
  if (snapshot.tabBar) {
    area.append(tabBar(snapshot.tabBar));
  }
  const screen = snapshot.screen;
  if (screen) {
    area.append(...widgetView(screen, model));
  } else {
    area.append(message(''));
  }
  const overlays = [];
  if (screen?.menu) {
    overlays.push(menuBox(screen.menu, 'Options'));
  }
  const openField = screen?.kind === 'form' ? screen.items?.find((item) => item.popup) : null;
  if (openField) {
    overlays.push(selectionPopup(openField));
  }
  if (snapshot.popup) {
    overlays.push(popupBox(snapshot.popup));
    if (snapshot.popup.menu) {
      overlays.push(menuBox(snapshot.popup.menu, 'Options'));
    }
  }
  if (overlays.length > 0) {
    const layer = el('div', 'overlay');
    layer.append(...overlays);
    area.append(layer);
  }
}

function tabBar(bar) {
  const strip = el('div', `tab-bar${bar.active ? ' active' : ''}`);
  (bar.labels ?? []).forEach((label, index) => {
    strip.append(el('span', `tab${index === bar.current ? ' current' : ''}`, textOf(label)));
  });
  return strip;
}

function widgetView(widget, model) {
  const views = [];
  const title = textOf(widget.title);
  views.push(el('div', 'title', title));
  const body = el('div', `content kind-${widget.kind}`);
  body.dataset.owner = widget.ownerId;
  fillContent(body, widget, model);
  views.push(body);
  if (typeof widget.ticker === 'string' && widget.ticker !== '') {
    views.push(ticker(widget.ticker));
  }
  return views;
}

function fillContent(body, widget, model) {
  switch (widget.kind) {
    case 'form':
      widget.items.forEach((item) => body.append(formItem(item, widget)));
      break;
    case 'list':
    case 'exclusiveList':
    case 'multipleList':
      widget.rows.forEach((row) => body.append(listRow(row, widget)));
      break;
    case 'table':
      body.append(...tableRows(widget));
      break;
    case 'textBox':
      body.append(textBox(widget));
      break;
    default:
      body.append(message(`(${widget.kind})`));
  }
  if (widget.ticker) {
    body.classList.add('with-ticker');
  }
  body.style.setProperty('--lines', model.visibleLines);
}

function focusClass(entry, widget) {
  if (!entry.focused) {
    return '';
  }
  return widget.highlight ? ' focused' : ' focused dim-focus';
}

function listRow(row, widget) {
  const line = el('div', `row${focusClass(row, widget)}${row.grey ? ' grey' : ''}`);
  if ('ticked' in row) {
    line.append(el('span', `mark tick${row.ticked ? ' on' : ''}`, row.ticked ? '☑' : '☐'));
  } else if ('chosen' in row) {
    line.append(el('span', `mark radio${row.chosen ? ' on' : ''}`, row.chosen ? '◉' : '○'));
  }
  if (row.image || row.reserveImage) {
    line.append(imageBox(row.image, 'row-image'));
  }
  const columns = el('span', 'columns');
  (row.columns ?? []).forEach((column) => columns.append(el('span', 'column', textOf(column))));
  line.append(columns);
  if (row.arrow) {
    line.append(el('span', 'arrow', '›'));
  }
  return line;
}

// A picture at its size: the real one from the phone when the snapshot gives its address, else a
// box of its size and kind (a broken picture shows why in its tooltip).
function imageBox(image, className, altText = '') {
  const box = el('span', `image ${className}`);
  if (!image) {
    box.classList.add('reserved');
    return box;
  }
  box.style.setProperty('--iw', image.width || 16);
  box.style.setProperty('--ih', image.height || 16);
  const alt = altText || image.name || `${image.width}×${image.height} ${image.kind}`;
  box.title = `${image.kind} ${image.width}×${image.height}${image.path ? ` ${image.path}` : ''}`
    + `${image.problem ? `: ${image.problem}` : ''}`;
  if (image.url) {
    const picture = el('img', 'picture');
    picture.src = image.url;
    picture.alt = alt;
    picture.width = image.width;
    picture.height = image.height;
    box.classList.add('loaded');
    box.append(picture);
    return box;
  }
  box.append(el('span', 'image-kind', image.kind === 'broken' ? '✕' : `${image.width}×${image.height}`));
  if (image.kind === 'broken') {
    box.classList.add('broken');
  }
  return box;
}

function formItem(item, form) {
  const labelWidth = LABEL_PERCENT[form.proportion] ?? 40;
  const row = el('div', `item item-${item.kind}${focusClass(item, form)}`);
  row.style.setProperty('--label', `${labelWidth}%`);
  const label = textOf(item.label);
  if (item.kind === 'choiceGroup') {
    return choiceGroup(item, form, row, label);
  }
  if (labelWidth > 0) {
    row.append(el('span', 'item-label', label));
  }
  row.append(itemValue(item));
  return row;
}

function itemValue(item) {
  const value = el('span', 'item-value');
  switch (item.kind) {
    case 'textField': {
      value.classList.add('field');
      if (item.editing) {
        value.classList.add('editing');
      }
      if (item.readOnly) {
        value.classList.add('read-only');
      }
      value.append(el('span', 'field-text', textOf(item.value)));
      if (item.editing) {
        value.append(el('span', 'caret'));
      }
      if (item.arrow) {
        value.append(el('span', 'arrow', '›'));
      }
      break;
    }
    case 'selectionField':
      value.classList.add('selection');
      append(value, el('span', 'chevron', '‹'), el('span', 'field-text', textOf(item.value)),
        el('span', 'chevron', '›'));
      break;
    case 'slider':
      value.append(slider(item));
      if (item.automatic) {
        value.classList.add('automatic');
      }
      break;
    case 'imageItem':
      value.append(item.image ? imageBox(item.image, 'item-image', textOf(item.altText)) : el('span', 'alt-text', textOf(item.altText)));
      if (item.arrow) {
        value.append(el('span', 'arrow', '›'));
      }
      if (item.informsOnOk) {
        value.classList.add('button');
      }
      break;
    default:
      value.textContent = textOf(item.value);
  }
  return value;
}

function slider(item) {
  const track = el('span', 'slider');
  const span = Math.max(1, item.max - item.min);
  const fill = el('span', 'slider-fill');
  fill.style.width = `${(100 * (item.value - item.min)) / span}%`;
  track.append(fill);
  track.title = `${item.value} (${item.min}..${item.max})`;
  const wrapper = el('span', 'slider-wrap');
  append(wrapper, track, el('span', 'slider-value', String(item.value)));
  return wrapper;
}

function choiceGroup(item, form, row, label) {
  row.classList.add('choice-group');
  if (label) {
    row.append(el('div', 'choice-label', label));
  }
  const exclusive = item.choiceType === 'exclusive';
  (item.choices ?? []).forEach((choice, index) => {
    const focused = item.focused && index === item.row;
    const line = el('div', `choice${focused ? (form.highlight ? ' focused' : ' focused dim-focus') : ''}`);
    const mark = exclusive ? (choice.selected ? '◉' : '○') : (choice.selected ? '☑' : '☐');
    line.append(el('span', 'mark', mark));
    if (choice.image) {
      line.append(imageBox(choice.image, 'row-image'));
    }
    line.append(el('span', 'column', textOf(choice.text)));
    row.append(line);
  });
  row.classList.remove('focused', 'dim-focus');
  return row;
}

// A table: the header, then each row with its one or two lines of cells. Above the first row the
// table itself has the focus (its options), shown on the header.
function tableRows(table) {
  const rows = [];
  const reserve = table.reserveArrow ? ' reserve-arrow' : '';
  const tableFocused = table.focus === -1 && (table.rows ?? []).length > 0;
  if (table.header?.lines?.length) {
    rows.push(tableRow(table.header, `table-header${reserve}${tableFocused ? focusClass({ focused: true }, table) : ''}`,
      table.header.widths));
  }
  const firstWidths = table.rows?.[0]?.widths;
  (table.rows ?? []).forEach((row) => rows.push(
    tableRow(row, `table-row${reserve}${focusClass(row, table)}`, row.widths?.length ? row.widths : firstWidths)));
  return rows;
}

function tableRow(row, className, widths) {
  const block = el('div', className);
  for (const line of row.lines ?? []) {
    const cells = el('div', 'table-line');
    line.forEach((cell, index) => {
      const view = el('span', `cell${cell.grey ? ' grey' : ''}`);
      const width = widths?.[index];
      if (width > 0 && width <= 100) {
        view.style.flex = `0 0 ${width}%`;
      }
      (cell.images ?? []).forEach((image) => view.append(imageBox(image, 'cell-image')));
      view.append(el('span', '', textOf(cell.text)));
      cells.append(view);
    });
    block.append(cells);
  }
  if (row.arrow) {
    block.append(el('span', 'arrow', '›'));
  }
  return block;
}

function textBox(widget) {
  const box = el('div', `text-box${widget.readOnly ? ' read-only' : ' editable'}`);
  const characters = Array.from(textOf(widget.text));
  const caret = Math.min(characters.length, Math.max(0, widget.caret ?? characters.length));
  box.append(el('span', 'text-before', characters.slice(0, caret).join('')));
  if (!widget.readOnly) {
    box.append(el('span', 'caret'));
  }
  box.append(el('span', 'text-after', characters.slice(caret).join('')));
  return box;
}

function ticker(text) {
  const strip = el('div', 'ticker');
  strip.append(el('span', 'ticker-text', text));
  return strip;
}

function entryList(entries, focus, highlight = true) {
  const list = el('div', 'entries-list');
  (entries ?? []).forEach((entry, index) => {
    const focused = index === focus;
    list.append(el('div', `entry${focused ? (highlight ? ' focused' : ' focused dim-focus') : ''}`, textOf(entry)));
  });
  return list;
}

function menuBox(menu, title) {
  const box = el('div', 'popup menu-box');
  append(box, el('div', 'popup-title', title), entryList(menu.entries, menu.focus));
  return box;
}

function selectionPopup(field) {
  const box = el('div', 'popup selection-popup');
  append(box, el('div', 'popup-title', textOf(field.label)), entryList(field.entries, field.popup.focus));
  return box;
}

function popupBox(popup) {
  const box = el('div', `popup popup-${popup.kind}`);
  const title = textOf(popup.title);
  switch (popup.kind) {
    case 'alert':
      box.append(alertView(popup, title));
      break;
    case 'popupConfirm':
    case 'contextMenu':
      append(box, el('div', 'popup-title', title || (popup.kind === 'contextMenu' ? 'Options' : '')),
        entryList(popup.entries, popup.focus, popup.highlight !== false));
      break;
    case 'player':
      box.append(playerView(popup, title));
      break;
    default:
      append(box, el('div', 'popup-title', title), el('div', 'popup-text', `(${popup.kind})`));
  }
  return box;
}

function alertView(alert, title) {
  const view = el('div', `alert alert-${ALERT_NAMES[alert.alertType] ?? 'other'}`);
  const head = el('div', 'popup-title');
  append(head, el('span', 'alert-icon', ALERT_ICONS[alert.alertType] ?? '•'), el('span', '', title));
  view.append(head);
  const body = el('div', 'alert-body');
  if (alert.image) {
    body.append(imageBox(alert.image, 'alert-image'));
  }
  body.append(el('div', 'popup-text', textOf(alert.text)));
  view.append(body);
  if (alert.commands?.length) {
    const commands = el('div', 'alert-commands');
    alert.commands.forEach((label, index) => {
      commands.append(el('span', `alert-command${index === alert.focus ? ' focused' : ''}`, textOf(label)));
    });
    view.append(commands);
  }
  return view;
}

// The widget library's player states by number, and the keys that stand for its buttons.
const PLAYER_STATES = ['playing', 'ready', 'stopped', 'finished', 'recording'];
const PLAYER_MODES = ['call', 'record'];
const PLAYER_KEYS = [
  ['OK', 'play / pause'], ['◀ ▶', 'rewind / forward'], ['▲ ▼', 'skip back / ahead'],
  ['5', 'stop'], ['0', 'call'], ['*', 'delete'], ['#', 'confirm'], ['Back', 'cancel'],
];

function playerView(player, title) {
  const view = el('div', `player player-${PLAYER_STATES[player.state] ?? 'other'}`);
  const progress = player.progress ?? { min: 0, max: 1, value: 0 };
  const state = `${PLAYER_STATES[player.state] ?? `state ${player.state}`} · ${PLAYER_MODES[player.mode] ?? ''}`;
  const keys = el('div', 'player-keys');
  for (const [key, meaning] of PLAYER_KEYS) {
    append(keys, el('span', 'player-key', key), el('span', 'player-meaning', meaning));
  }
  append(view, el('div', 'popup-title', title || 'Player'), el('div', 'popup-text player-state', state),
    slider({ min: progress.min, max: progress.max, value: progress.value }), keys);
  return view;
}

function softKeyBar(labels, count) {
  const bar = el('div', 'softkey-bar');
  for (let index = 0; index < count; index += 1) {
    bar.append(el('span', 'softkey-label', textOf(labels?.[index])));
  }
  return bar;
}

// Scrolls each scrolled part so that its focused entry is in view, remembering where it was.
function keepFocusVisible(container, snapshot) {
  const content = container.querySelector('.content');
  if (content) {
    const key = `${snapshot?.screen?.ownerId}:${snapshot?.screen?.kind}`;
    content.scrollTop = scrollTops.get(key) ?? 0;
    const focused = content.querySelector('.choice.focused, .focused');
    if (focused) {
      bringIntoView(content, focused);
    } else if (snapshot?.screen?.kind === 'textBox') {
      content.scrollTop = content.scrollHeight;
    }
    scrollTops.set(key, content.scrollTop);
  }
  for (const list of container.querySelectorAll('.popup .entries-list')) {
    const focused = list.querySelector('.focused');
    if (focused) {
      bringIntoView(list, focused);
    }
  }
}

function bringIntoView(scroller, element) {
  const view = scroller.getBoundingClientRect();
  const box = element.getBoundingClientRect();
  if (box.top < view.top) {
    scroller.scrollTop -= view.top - box.top;
  } else if (box.bottom > view.bottom) {
    scroller.scrollTop += Math.min(box.bottom - view.bottom, box.top - view.top);
  }
}
