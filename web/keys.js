// The phone's keys: soft keys, dial pad and keyboard shortcuts, sent in order to the control API.
import { el, textOf } from './dom.js';

const DIAL_KEYS = [
  ['1', ''], ['2', 'abc'], ['3', 'def'],
  ['4', 'ghi'], ['5', 'jkl'], ['6', 'mno'],
  ['7', 'pqrs'], ['8', 'tuv'], ['9', 'wxyz'],
  ['*', ''], ['0', '+'], ['#', ''],
];

const KEYBOARD_KEYS = {
  ArrowUp: 'up', ArrowDown: 'down', ArrowLeft: 'left', ArrowRight: 'right',
  Enter: 'ok', Escape: 'back',
  F1: 'softkey1', F2: 'softkey2', F3: 'softkey3', F4: 'softkey4', F5: 'softkey5', F6: 'softkey6',
};

// How long text waits for the screen that follows a key (Ok starts editing) before it is sent.
const SCREEN_WAIT_MS = 150;

// Sends keys and text one after the other, so that a quick sequence reaches the phone in order.
export class KeySender {
  constructor(isEditing) {
    this.isEditing = isEditing;
    this.chain = Promise.resolve();
    this.screenArrived = null;
    this.awaitingScreen = false;
  }

  key(name) {
    this.enqueue(async () => {
      await post('api/keys', { keys: [name] });
      // The answer comes once the phone has settled; the next screen event shows the result (or
      // came already, which costs text a short wait).
      this.awaitingScreen = true;
    });
  }

  // Text goes to the field being edited; with no such field it is dropped, as on the phone.
  text(characters) {
    this.enqueue(async () => {
      if (this.awaitingScreen) {
        await this.nextScreen();
      }
      if (this.isEditing()) {
        await post('api/text', { text: characters });
      }
    });
  }

  application(action = 'show') {
    this.enqueue(() => post('api/application', { action }));
  }

  // Called for every new snapshot.
  screenChanged() {
    this.awaitingScreen = false;
    this.screenArrived?.();
  }

  nextScreen() {
    return new Promise((resolve) => {
      const timer = setTimeout(done, SCREEN_WAIT_MS);
      const self = this;
      function done() {
        clearTimeout(timer);
        self.screenArrived = null;
        self.awaitingScreen = false;
        resolve();
      }
      this.screenArrived = done;
    });
  }

  enqueue(task) {
    this.chain = this.chain.then(task).catch((error) => console.warn('agp-phone: key not sent', error));
  }
}

async function post(path, body) {
  const response = await fetch(path, {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify(body),
  });
  if (!response.ok) {
    throw new Error(`${path}: ${response.status} ${await response.text()}`);
  }
  return response.json();
}

export function buildDialPad(container) {
  const keys = DIAL_KEYS.map(([digit, letters]) => {
    const button = el('button', 'key dial');
    button.type = 'button';
    button.dataset.key = digit;
    button.append(el('span', 'digit', digit), el('span', 'letters', letters));
    button.setAttribute('aria-label', digit);
    return button;
  });
  container.replaceChildren(...keys);
}

// One button per soft key, under the label the display shows for it.
export function renderSoftKeys(container, model, labels) {
  const count = model?.softKeyBar ? model.softKeys : 0;
  container.hidden = count === 0;
  if (container.children.length !== count) {
    const buttons = [];
    for (let index = 1; index <= count; index += 1) {
      const button = el('button', 'key softkey');
      button.type = 'button';
      button.dataset.key = `softkey${index}`;
      buttons.push(button);
    }
    container.replaceChildren(...buttons);
  }
  Array.from(container.children).forEach((button, index) => {
    const label = textOf(labels?.[index]);
    button.title = `Soft key ${index + 1} (F${index + 1})${label ? `: ${label}` : ''}`;
    button.setAttribute('aria-label', button.title);
  });
}

// Clicks on any element with data-key anywhere under `root`.
export function bindKeyClicks(root, sender) {
  root.addEventListener('click', (event) => {
    const button = event.target.closest('[data-key]');
    if (!button || !root.contains(button)) {
      return;
    }
    const name = button.dataset.key;
    // Keyboard focus goes back to the page, so Enter or Space do not press this button again.
    button.blur();
    if (name === 'application') {
      sender.application('show');
    } else {
      sender.key(name);
    }
  });
}

export function bindKeyboard(target, sender) {
  target.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || belongsToPage(event)) {
      return;
    }
    const name = keyName(event);
    if (name) {
      event.preventDefault();
      flash(name);
      sender.key(name);
    } else if (event.key.length > 0 && Array.from(event.key).length === 1) {
      event.preventDefault();
      sender.text(event.key);
    } else if (event.key === 'Backspace' && sender.isEditing()) {
      // Left deletes the character before the caret while editing.
      event.preventDefault();
      sender.key('left');
    }
  });
}

function keyName(event) {
  if (KEYBOARD_KEYS[event.key]) {
    return KEYBOARD_KEYS[event.key];
  }
  return /^[0-9*#]$/.test(event.key) ? event.key : null;
}

// Keys the page's own controls need: typing into a filter, Enter or Space on a panel button.
function belongsToPage(event) {
  const node = event.target;
  if (!(node instanceof HTMLElement)) {
    return false;
  }
  if (node.closest('input, select, textarea, [contenteditable="true"]')) {
    return true;
  }
  return (event.key === 'Enter' || event.key === ' ') && node.closest('.devpanel button, .devpanel summary');
}

// Shows the key as pressed, so keyboard use is visible on the phone.
function flash(name) {
  const button = document.querySelector(`.phone [data-key="${CSS.escape(name)}"]`);
  if (!button) {
    return;
  }
  button.classList.add('pressed');
  setTimeout(() => button.classList.remove('pressed'), 120);
}
