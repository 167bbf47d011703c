// The page's start: the live event stream drives the display, the keys and the developer panel.
import { DevPanel } from './devpanel.js';
import { renderDisplay } from './display.js';
import { connectEvents } from './events.js';
import { bindKeyboard, bindKeyClicks, buildDialPad, KeySender, renderSoftKeys } from './keys.js';
import { displayPng, downloadBlob } from './png.js';
import { bindFormatSettings, showFormats } from './settings.js';
import { PhonePanel } from './phone.js';

const page = {
  snapshot: null,
  state: null,
  connected: false,
};

const display = document.getElementById('display');
const softKeys = document.getElementById('softkeys');
const panel = new DevPanel(document.querySelector('.devpanel'));
const sender = new KeySender(() => isEditing(page.snapshot));
const phonePanel = new PhonePanel(document.getElementById('panel-phone'), document.getElementById('call-screen'));

// A field takes typed text while a text field is being edited or an editable text box is shown,
// and nothing covers it.
export function isEditing(snapshot) {
  const screen = snapshot?.screen;
  if (!snapshot?.shown || !screen || snapshot.popup || screen.menu) {
    return false;
  }
  if (screen.kind === 'textBox') {
    return !screen.readOnly;
  }
  return screen.kind === 'form'
    && (screen.items ?? []).some((item) => item.focused && item.kind === 'textField' && item.editing);
}

function showScreen(snapshot) {
  page.snapshot = snapshot;
  renderDisplay(display, snapshot);
  renderSoftKeys(softKeys, snapshot.model, snapshot.softKeys);
  display.dataset.revision = snapshot.revision;
  sender.screenChanged();
  if (page.state) {
    phonePanel.showCallScreen(page.state.calls ?? [], snapshot);
  }
}

function showState(state) {
  page.state = state;
  const led = document.getElementById('led');
  led.classList.toggle('on', Boolean(state.led));
  document.getElementById('app-key').title =
    `Application key: shows ${state.application || 'the application'}${state.led ? ' (LED on)' : ''}`;
  document.title = `${state.application || 'agp-phone'} — agp-phone`;
  showFormats(document.getElementById('date-format'), document.getElementById('time-format'), state);
  phonePanel.update(state, page.snapshot);
}

function showConnection(open) {
  const status = document.getElementById('connection');
  if (open && !page.connected) {
    panel.reconnected();
  }
  page.connected = open;
  status.textContent = open ? 'live' : 'disconnected, retrying…';
  status.classList.toggle('down', !open);
  document.body.classList.toggle('offline', !open);
}

function say(text) {
  document.getElementById('toolbar-status').textContent = text;
}

async function copyScreenText() {
  const response = await fetch('api/screen/text');
  const text = await response.text();
  await writeClipboard(text);
  say(`Copied ${text.split('\n').filter(Boolean).length} lines`);
}

// The clipboard API needs the page to have the focus; the older command works without it.
async function writeClipboard(text) {
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    const area = document.createElement('textarea');
    area.value = text;
    area.style.position = 'fixed';
    area.style.opacity = '0';
    document.body.append(area);
    area.select();
    document.execCommand('copy');
    area.remove();
  }
}

async function savePng() {
  const blob = await displayPng(display);
  const stamp = new Date().toISOString().replace(/[:.]/g, '-').slice(0, 19);
  downloadBlob(blob, `agp-phone-${stamp}.png`);
  say('PNG saved');
}

function reportFailure(action) {
  return () => action().catch((error) => say(`Failed: ${error.message}`));
}

// A mouse click leaves no focus behind in the panel, so Enter and Space go on reaching the phone;
// controls reached with Tab keep it.
function releaseFocusAfterClick(root) {
  root.addEventListener('click', (event) => {
    const control = event.target.closest('button, summary');
    if (control && event.detail > 0) {
      control.blur();
    }
  });
}

renderDisplay(display, null);
releaseFocusAfterClick(document.querySelector('.devpanel'));
buildDialPad(document.getElementById('dialpad'));
bindKeyClicks(document.querySelector('.phone'), sender);
bindKeyboard(document, sender);
document.getElementById('copy-text').addEventListener('click', reportFailure(copyScreenText));
document.getElementById('save-png').addEventListener('click', reportFailure(savePng));
bindFormatSettings(document.getElementById('date-format'), document.getElementById('time-format'), say);
connectEvents({
  screen: showScreen,
  state: showState,
  requests: (batch) => panel.addRequests(batch),
  log: (batch) => panel.addLog(batch),
  pushes: (batch) => panel.addPushes(batch),
  connection: showConnection,
});
