// The developer panel: requests with the documents received, the log with its filters, pushes,
// and the pictures the application asked for.
import { append, el, textOf } from './dom.js';
import { prettyXml } from './xml.js';

const LOG_KEPT = 2000;
const PUSH_TYPES = { 1: 'queue', 2: 'indicate', 3: 'force', 4: 'active' };
const TRACE_LEVEL = 5;
const LEVEL_NAMES = { 1: 'fatal', 2: 'error', 3: 'warning', 4: 'info', 5: 'trace', 6: 'detail' };
const PICTURES_KEPT = 500;
// The phonelet traces one outcome line for every picture it downloads or reads.
const PICTURE_OUTCOME = /^AGPImage::downloadImage\(\): picture \[(.*)\], (\d+) bytes: (.*)$/s;

// Entries numbered by the host; after a reconnect the host sends what it keeps again, and after
// a restart of the host the numbers begin anew, which empties the list.
class Journal {
  constructor() {
    this.entries = [];
    this.last = 0;
  }

  // Returns the entries not seen before, and whether the list had to be emptied first.
  accept(batch) {
    const list = Array.isArray(batch) ? batch : [];
    let reset = false;
    if (list.length > 0 && this.fresh && Math.max(...list.map((entry) => entry.sequence)) < this.last) {
      this.entries = [];
      this.last = 0;
      reset = true;
    }
    this.fresh = false;
    const added = list.filter((entry) => entry.sequence > this.last);
    for (const entry of added) {
      this.entries.push(entry);
      this.last = Math.max(this.last, entry.sequence);
    }
    return { added, reset };
  }
}

export class DevPanel {
  constructor(root) {
    this.root = root;
    this.requests = new Journal();
    this.log = new Journal();
    this.pushes = new Journal();
    this.requestList = root.querySelector('#requests');
    this.logList = root.querySelector('#log');
    this.pushList = root.querySelector('#pushes');
    this.pictureList = root.querySelector('#pictures');
    this.pictureCount = 0;
    this.moduleFilter = root.querySelector('#log-module');
    this.levelFilter = root.querySelector('#log-level');
    this.modules = new Set();
    this.bindTabs();
    this.moduleFilter.addEventListener('change', () => this.redrawLog());
    this.levelFilter.addEventListener('change', () => {
      this.askForLevel(Number(this.levelFilter.value));
      this.redrawLog();
    });
  }

  // The phone keeps the normal trace; the detailed one costs it work on every element of every
  // document, so it is kept only from the moment the developer asks for it here.
  askForLevel(level) {
    fetch('api/log/level', {
      method: 'POST',
      headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify({ level: Math.max(level, TRACE_LEVEL) }),
    }).catch((error) => console.warn('agp-phone: log level not changed', error));
  }

  // After a reconnect the next batch of each kind may start the numbering anew.
  reconnected() {
    for (const journal of [this.requests, this.log, this.pushes]) {
      journal.fresh = true;
    }
  }

  addRequests(batch) {
    const { added, reset } = this.requests.accept(batch);
    if (reset) {
      this.requestList.replaceChildren();
    }
    keepScrolledToEnd(this.requestList, () => added.forEach((entry) => this.requestList.append(requestView(entry))));
    this.count('requests', this.requests.entries.length);
  }

  addLog(batch) {
    const { added, reset } = this.log.accept(batch);
    if (this.log.entries.length > LOG_KEPT) {
      this.log.entries.splice(0, this.log.entries.length - LOG_KEPT);
    }
    added.forEach((line) => this.noteModule(line.module));
    this.addPictures(added, reset);
    if (reset || this.logList.children.length > LOG_KEPT) {
      this.redrawLog();
    } else {
      keepScrolledToEnd(this.logList, () => added.filter((line) => this.passes(line))
        .forEach((line) => this.logList.append(logView(line))));
    }
    this.count('log', this.log.entries.length);
  }

  addPictures(lines, reset) {
    if (reset) {
      this.pictureList.replaceChildren();
      this.pictureCount = 0;
    }
    const pictures = lines.map(pictureOutcome).filter(Boolean);
    keepScrolledToEnd(this.pictureList, () => pictures.forEach((picture) => this.pictureList.append(pictureView(picture))));
    while (this.pictureList.children.length > PICTURES_KEPT) {
      this.pictureList.firstElementChild.remove();
    }
    this.pictureCount += pictures.length;
    this.count('pictures', this.pictureCount);
  }

  addPushes(batch) {
    const { added, reset } = this.pushes.accept(batch);
    if (reset) {
      this.pushList.replaceChildren();
    }
    keepScrolledToEnd(this.pushList, () => added.forEach((entry) => this.pushList.append(pushView(entry))));
    this.count('pushes', this.pushes.entries.length);
  }

  passes(line) {
    const module = this.moduleFilter.value;
    return (module === '' || line.module === module) && line.level <= Number(this.levelFilter.value);
  }

  redrawLog() {
    const lines = this.log.entries.filter((line) => this.passes(line)).map(logView);
    this.logList.replaceChildren(...lines);
    this.logList.scrollTop = this.logList.scrollHeight;
  }

  noteModule(module) {
    if (!module || this.modules.has(module)) {
      return;
    }
    this.modules.add(module);
    const options = [...this.modules].sort().map((name) => {
      const option = el('option', '', name);
      option.value = name;
      return option;
    });
    const all = el('option', '', 'all');
    all.value = '';
    const chosen = this.moduleFilter.value;
    this.moduleFilter.replaceChildren(all, ...options);
    this.moduleFilter.value = chosen;
  }

  count(kind, number) {
    this.root.querySelector(`#count-${kind}`).textContent = String(number);
  }

  bindTabs() {
    const tabs = Array.from(this.root.querySelectorAll('[role="tab"]'));
    for (const tab of tabs) {
      tab.addEventListener('click', () => {
        for (const other of tabs) {
          const selected = other === tab;
          other.setAttribute('aria-selected', String(selected));
          this.root.querySelector(`#${other.getAttribute('aria-controls')}`).hidden = !selected;
        }
      });
    }
  }
}

// Follows new entries only when the reader is already at the end of the list.
function keepScrolledToEnd(list, addEntries) {
  const atEnd = list.scrollTop + list.clientHeight >= list.scrollHeight - 4;
  addEntries();
  if (atEnd) {
    list.scrollTop = list.scrollHeight;
  }
}

// Requests and pushes carry seconds since 1970, log lines a local "YYYY-MM-DD HH:MM:SS.mmm".
function clock(time) {
  if (typeof time === 'string') {
    return time.split(' ').pop();
  }
  if (!time) {
    return '';
  }
  return new Date(time * 1000).toLocaleTimeString([], { hour12: false });
}

function requestStatus(entry) {
  if (entry.success && entry.httpStatus) {
    return String(entry.httpStatus);
  }
  return entry.httpStatus ? `${entry.httpStatus} failed` : (textOf(entry.error) || 'failed');
}

function requestView(entry) {
  const item = el('li', `request${entry.success ? '' : ' failed'}`);
  const details = el('details');
  const summary = el('summary');
  append(summary,
    el('span', 'method', textOf(entry.method) || 'GET'),
    el('span', `status${entry.success ? '' : ' bad'}`, requestStatus(entry)),
    el('span', 'duration', `${entry.durationMs ?? 0} ms`),
    el('span', 'url', textOf(entry.url)));
  summary.title = textOf(entry.url);
  details.append(summary);
  details.addEventListener('toggle', () => {
    if (details.open && details.children.length === 1) {
      details.append(requestBody(entry));
    }
  }, { once: false });
  item.append(details);
  return item;
}

// Built when first opened: a long document is only indented when someone looks at it.
function requestBody(entry) {
  const body = el('div', 'request-detail');
  const facts = el('dl', 'facts');
  const fact = (name, value) => {
    if (value !== '' && value !== undefined && value !== null) {
      append(facts, el('dt', '', name), el('dd', '', String(value)));
    }
  };
  fact('Time', clock(entry.time));
  if (entry.finalUrl && entry.finalUrl !== entry.url) {
    fact('Final URL', entry.finalUrl);
  }
  if (Array.isArray(entry.redirections) && entry.redirections.length > 0) {
    fact('Redirected to', entry.redirections.join('\n'));
  }
  if (entry.connectionStatus >= 0) {
    fact('Connection status', entry.connectionStatus);
  }
  fact('Error', textOf(entry.error));
  const shown = entry.bodyDropped ? ' (no longer kept)' : entry.bodyTruncated ? ' (shown in part)' : '';
  fact('Size', `${entry.bodySize ?? 0} bytes${shown}`);
  body.append(facts);
  if (Array.isArray(entry.headers) && entry.headers.length > 0) {
    body.append(el('div', 'detail-heading', 'Response headers'));
    body.append(el('pre', 'headers', entry.headers.map(([name, value]) => `${name}: ${value}`).join('\n')));
  }
  if (textOf(entry.requestBody)) {
    body.append(el('div', 'detail-heading', 'Request body'));
    body.append(el('pre', 'request-body', entry.requestBody));
  }
  body.append(el('div', 'detail-heading', 'Document received'));
  body.append(el('pre', 'xml', prettyXml(textOf(entry.body)) || '(empty)'));
  return body;
}

function logView(line) {
  const item = el('li', `log-line level-${line.level}`);
  item.title = `${textOf(line.source)}:${line.line ?? ''} (thread ${textOf(String(line.thread ?? ''))})`;
  append(item,
    el('span', 'log-time', clock(line.time)),
    el('span', 'log-level', LEVEL_NAMES[line.level] ?? String(line.level)),
    el('span', 'log-module', textOf(line.module)),
    el('span', 'log-text', textOf(line.text)));
  return item;
}

// {time, address, bytes, outcome, kind} of a picture's outcome line (its size and kind, and
// whether it was cached; or why it was refused), or null for other lines.
function pictureOutcome(line) {
  const found = line.module === 'AGPObject' && PICTURE_OUTCOME.exec(textOf(line.text));
  if (!found) {
    return null;
  }
  const outcome = found[3].trim();
  const kind = outcome.startsWith('refused') ? 'refused' : 'fetched';
  return { time: line.time, address: found[1], bytes: Number(found[2]), outcome, kind };
}

function pictureView(picture) {
  const item = el('li', `picture-entry ${picture.kind}`);
  append(item,
    el('span', 'log-time', clock(picture.time)),
    el('span', `status${picture.kind === 'refused' ? ' bad' : ''}`, picture.kind),
    el('span', 'picture-bytes', `${picture.bytes} bytes`),
    el('span', 'picture-outcome', picture.outcome),
    el('span', 'url', picture.address));
  item.title = picture.address;
  return item;
}

function pushView(entry) {
  const item = el('li', `push${entry.accepted ? '' : ' refused'}`);
  const head = el('div', 'push-head');
  append(head,
    el('span', 'log-time', clock(entry.time)),
    el('span', 'push-type', PUSH_TYPES[entry.type] ?? String(entry.type)),
    el('span', `status${entry.accepted ? '' : ' bad'}`, entry.accepted ? 'accepted' : 'refused'),
    el('span', 'push-via', `via ${textOf(entry.via)}`),
    el('span', 'push-app', textOf(entry.application)));
  item.append(head, el('pre', 'push-data', formFieldsText(textOf(entry.data))));
  return item;
}

// A push body is form-encoded; one field a line reads better.
function formFieldsText(data) {
  try {
    const fields = [...new URLSearchParams(data)];
    return fields.length > 0 ? fields.map(([name, value]) => `${name} = ${value}`).join('\n') : data;
  } catch {
    return data;
  }
}
