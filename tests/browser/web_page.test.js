// The web page against a running agp-phone: the demo walked with clicks and with the keyboard.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';

import { launchBrowser } from './browser.js';
import { buildDirectory, startPhone } from './phone.js';

const SCREENSHOTS = process.env.AGP_SCREENSHOTS ?? path.join(buildDirectory(), 'screenshots');
const WAIT_MS = 5000;

let browser;
let large;
let small;
let items;

before(async () => {
  fs.mkdirSync(SCREENSHOTS, { recursive: true });
  [large, small, items, browser] = await Promise.all([
    startPhone({ model: 'soft-keys' }),
    startPhone({ model: 'no-soft-keys' }),
    startPhone({ model: 'soft-keys' }),
    launchBrowser({ downloads: SCREENSHOTS }),
  ]);
});

after(async () => {
  await browser?.close();
  const ends = await Promise.all([large, small, items].filter(Boolean).map((phone) => phone.stop()));
  for (const end of ends) {
    assert.deepEqual(end, { code: 0, signal: null }, 'agp-phone ends cleanly on SIGTERM');
  }
});

async function openPage(phone) {
  const page = await browser.context.newPage();
  const problems = [];
  page.on('pageerror', (error) => problems.push(error.message));
  page.on('console', (message) => message.type() === 'error' && problems.push(message.text()));
  await page.goto(phone.pageUrl);
  page.problems = problems;
  return page;
}

function displayText(page) {
  return page.locator('#display').innerText();
}

async function waitForDisplay(page, text) {
  try {
    await page.waitForFunction((wanted) => document.getElementById('display').innerText.includes(wanted), text,
      { timeout: WAIT_MS });
  } catch {
    assert.fail(`the display never showed "${text}"; it shows:\n${await displayText(page)}`);
  }
}

async function shot(page, name) {
  await page.screenshot({ path: path.join(SCREENSHOTS, `${name}.png`) });
}

async function press(page, key) {
  await page.locator(`.phone [data-key="${key}"]`).click();
}

function focusedRowText(page) {
  return page.locator('#display .content .focused').first().innerText();
}

describe('the large phone with soft keys', () => {
  let page;
  const textPosts = [];

  before(async () => {
    page = await openPage(large);
    page.on('request', (request) => request.url().endsWith('/api/text') && textPosts.push(request.postData()));
  });

  test('the menu is shown with its first row focused, and the start request is listed', async () => {
    await waitForDisplay(page, 'Pick colours');
    assert.match(await page.locator('#display .title').innerText(), /AGP demo/);
    assert.equal(await focusedRowText(page), 'Pick colours (multiple list)');
    assert.equal(await page.locator('#softkeys [data-key]').count(), 4, 'one button per soft key');
    await page.locator('#requests .url', { hasText: '/demo/start.xml' }).waitFor({ timeout: WAIT_MS });
    await shot(page, '01-menu');
  });

  test('the menu rows show the real pictures the phone downloaded', async () => {
    await waitForDisplay(page, 'Pick colours');
    await page.waitForFunction(() => {
      const pictures = [...document.querySelectorAll('#display .content img.picture')];
      return pictures.length === 5 && pictures.every((picture) => picture.complete && picture.naturalWidth === 24);
    }, null, { timeout: WAIT_MS });
    const addresses = await page.locator('#display .content img.picture')
      .evaluateAll((pictures) => pictures.map((picture) => new URL(picture.src).pathname));
    assert.ok(addresses.every((address) => /^\/api\/pictures\/\d+$/.test(address)), addresses.join());
    // The panel lists each download with its size and what became of it.
    await page.locator('#tab-pictures').click();
    const colours = page.locator('#pictures .picture-entry.fetched', { hasText: '/demo/pictures/colours.png' });
    await colours.waitFor({ timeout: WAIT_MS });
    assert.match(await colours.innerText(), /\d+ bytes[\s\S]*24x24 png, cached as demo-colours/);
    assert.equal(await page.locator('#count-pictures').innerText(), '5');
    await page.locator('#tab-requests').click();
  });

  test('clicks: a colour ticked on the multiple list and sent with the first soft key', async () => {
    await press(page, 'ok');
    await waitForDisplay(page, 'Yellow');
    const ticks = () => page.locator('#display .row .mark').allInnerTexts();
    assert.deepEqual(await ticks(), ['☐', '☑', '☐', '☐'], 'only Green starts ticked');
    assert.match(await page.locator('#display .softkey-bar').innerText(), /Send/);
    await press(page, 'ok');
    await page.waitForFunction(() => document.querySelector('#display .row .mark').textContent === '☑');
    await shot(page, '02-colours');
    await press(page, 'softkey1');
    await waitForDisplay(page, 'The server received');
    const text = await displayText(page);
    assert.match(text, /red = yes/);
    assert.match(text, /blue = not_yes/);
    await page.locator('#requests .url', { hasText: '/demo/echo' }).waitFor({ timeout: WAIT_MS });
    await page.locator('#requests .url', { hasText: '/demo/menu' }).first().waitFor();
    await shot(page, '03-echo');
  });

  test('a request expands to the received document, indented and shown as text', async () => {
    const echo = page.locator('#requests li', { has: page.locator('.url', { hasText: '/demo/echo' }) }).last();
    await echo.locator('summary').click();
    const xml = echo.locator('pre.xml');
    await xml.waitFor();
    const document = await xml.innerText();
    assert.match(document, /^<\?xml[^\n]*\?>\n/);
    assert.match(document, /\n<IppDisplay>\n {2}<IppScreen ID="6"[^\n]*>\n {4}<IppTextBox/);
    assert.match(document, /red = yes/);
    assert.equal(await xml.locator('*').count(), 0, 'the document is text, never markup');
    assert.match(await echo.locator('.status').innerText(), /200/);
  });

  test('keyboard: the form filled in, typed letters reach only a field being edited', async () => {
    await page.keyboard.press('F1');
    await waitForDisplay(page, 'Yellow');
    await page.keyboard.press('Escape');
    await waitForDisplay(page, 'Write a note');
    await page.keyboard.type('xyz');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('Enter');
    await waitForDisplay(page, 'PIN again');
    assert.equal(textPosts.length, 0, 'letters typed on a list are not sent');
    await shot(page, '04-form');

    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('Enter');
    await page.keyboard.type('Ann<b>');
    await page.locator('#display .field.editing', { hasText: 'Ann<b>' }).waitFor({ timeout: WAIT_MS });
    await shot(page, '05-form-editing');
    await page.keyboard.press('Enter');
    for (const key of ['ArrowDown', 'ArrowDown', 'Enter', '1', '2', 'Enter', 'ArrowDown', 'Enter', '1', '2', 'Enter']) {
      await page.keyboard.press(key);
    }
    await page.waitForFunction(() => document.querySelectorAll('#display .field-text')
      .item(4)?.textContent.length === 2);
    for (const key of ['ArrowUp', 'ArrowUp', 'ArrowUp', 'ArrowUp']) {
      await page.keyboard.press(key);
    }
    await page.waitForFunction(() => document.querySelector('#display .item.focused .item-label')
      ?.textContent === 'Options');
    await page.keyboard.press('Enter');
    await waitForDisplay(page, 'The server received');
    const text = await displayText(page);
    assert.match(text, /name = Ann<b>/);
    assert.equal(await page.locator('#display b').count(), 0, 'text from the phone never becomes markup');
    assert.match(text, /pin = 12/);
    assert.equal(textPosts.map((body) => JSON.parse(body).text).join(''), 'Ann<b>');
    await shot(page, '06-form-sent');
  });

  test('an alert stands over the dimmed menu and Back takes it away', async () => {
    await page.keyboard.press('Escape');
    await waitForDisplay(page, 'PIN again');
    await page.keyboard.press('Escape');
    await waitForDisplay(page, 'Show an alert');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('Enter');
    const alert = page.locator('#display .overlay .popup-alert');
    await alert.waitFor({ timeout: WAIT_MS });
    assert.match(await alert.innerText(), /Hello[\s\S]*closes itself/);
    assert.equal(await page.locator('#display .title').first().innerText(), 'AGP demo', 'the menu stays under it');
    await shot(page, '07-alert');
    await press(page, 'back');
    await alert.waitFor({ state: 'detached', timeout: WAIT_MS });
  });

  // How fast is measured in bench/ (agp_screen_bench); here only that the page follows by itself,
  // with the delays reported for a look.
  test('a change on the phone reaches the page by itself', async (t) => {
    const delays = [];
    for (const key of ['up', 'down', 'up', 'down']) {
      delays.push(await page.evaluate(async (name) => {
        const display = document.getElementById('display');
        const before = display.dataset.revision;
        const shown = new Promise((resolve) => {
          new MutationObserver((changes, observer) => {
            if (display.dataset.revision !== before) {
              observer.disconnect();
              resolve(performance.now());
            }
          }).observe(display, { attributes: true, attributeFilter: ['data-revision'] });
        });
        await fetch('api/keys', {
          method: 'POST',
          headers: { 'Content-Type': 'application/json' },
          body: JSON.stringify({ keys: [name] }),
        });
        // The key's answer comes once the display has settled: the change is made by then.
        const changed = performance.now();
        return (await shown) - changed;
      }, key));
    }
    assert.equal(await focusedRowText(page), 'Show an alert');
    assert.equal(delays.length, 4);
    t.diagnostic(`delays from change to page: ${delays.map(Math.round).join(', ')} ms`);
  });

  test('the screen is copied as text and saved as a PNG of the display', async () => {
    await browser.context.grantPermissions(['clipboard-read', 'clipboard-write']);
    await page.locator('#copy-text').click();
    await page.locator('#toolbar-status', { hasText: 'Copied' }).waitFor({ timeout: WAIT_MS });
    const copied = await page.evaluate(() => navigator.clipboard.readText());
    assert.match(copied, /== AGP demo ==\n(.*\n)*> \[picture: 24x24 png\] Show an alert/);

    const [download] = await Promise.all([page.waitForEvent('download'), page.locator('#save-png').click()]);
    const file = path.join(SCREENSHOTS, '08-saved-display.png');
    await download.saveAs(file);
    const png = fs.readFileSync(file);
    assert.equal(png.subarray(1, 4).toString(), 'PNG');
    const model = await page.evaluate(() => [document.getElementById('display').style.getPropertyValue('--w'),
      document.getElementById('display').style.getPropertyValue('--h')].map(Number));
    assert.deepEqual([png.readUInt32BE(16), png.readUInt32BE(20)], model.map((size) => size * 2),
      'twice the display resolution');
  });

  test('the log filters by module and by level; a push is listed', async () => {
    await page.locator('#tab-log').click();
    const lines = page.locator('#log .log-line');
    await lines.first().waitFor({ timeout: WAIT_MS });
    const all = await lines.count();
    await page.locator('#log-level').selectOption('4');
    const levels = await page.locator('#log .log-level').allInnerTexts();
    assert.ok(levels.length < all, 'detailed trace hidden at level 4');
    assert.ok(levels.every((level) => ['fatal', 'error', 'warning', 'info'].includes(level)));
    await page.locator('#log-level').selectOption('6');
    await page.locator('#log-module').selectOption('AGPGUIHandler');
    const modules = await page.locator('#log .log-module').allInnerTexts();
    assert.ok(modules.length > 0 && modules.every((module) => module === 'AGPGUIHandler'));
    await shot(page, '09-log');

    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('Enter');
    await waitForDisplay(page, 'pushed this screen');
    await page.locator('#tab-pushes').click();
    const push = page.locator('#pushes .push').first();
    await push.waitFor({ timeout: WAIT_MS });
    assert.match(await push.innerText(), /accepted[\s\S]*via demo server/);
    await shot(page, '10-pushed');
    // Level 6 was asked for above, so the pushed document's elements were traced in detail.
    await page.locator('#tab-log').click();
    await page.locator('#log-module').selectOption('AGPXMLParser');
    await page.locator('#log .log-level', { hasText: 'detail' }).first().waitFor({ timeout: WAIT_MS });
    await page.locator('#tab-pushes').click();
    assert.deepEqual(page.problems, []);
  });
});

describe('the small phone without soft keys', () => {
  test('# opens the options of the list over it, the App key shows the application again, and the page fits a narrow window at 200%', async () => {
    const page = await openPage(small);
    await waitForDisplay(page, 'Pick colours');
    assert.equal(await page.locator('#softkeys').isHidden(), true);
    assert.equal(await page.locator('#display .softkey-bar').count(), 0);
    await page.keyboard.press('Enter');
    await waitForDisplay(page, 'Yellow');
    await page.keyboard.press('#');
    const menu = page.locator('#display .overlay .popup');
    await menu.waitFor({ timeout: WAIT_MS });
    assert.match(await menu.innerText(), /Send[\s\S]*Back/);
    await shot(page, '11-small-options');
    await page.keyboard.press('Escape');
    await menu.waitFor({ state: 'detached', timeout: WAIT_MS });

    await fetch(new URL('api/application', small.pageUrl), {
      method: 'POST',
      headers: { 'Content-Type': 'application/json' },
      body: '{"action": "hide"}',
    });
    await waitForDisplay(page, 'Application hidden');
    await press(page, 'application');
    await waitForDisplay(page, 'Yellow');

    const cdp = await browser.context.newCDPSession(page);
    await cdp.send('Emulation.setDeviceMetricsOverride', { width: 400, height: 900, deviceScaleFactor: 2, mobile: false });
    const phone = await page.locator('.phone').boundingBox();
    const panel = await page.locator('.devpanel').boundingBox();
    assert.ok(panel.y >= phone.y + phone.height, 'the panel goes under the phone');
    assert.ok(phone.x >= 0 && phone.x + phone.width <= 400, 'the phone fits the window');
    // Taken through the same session: a page screenshot would undo the emulated zoom.
    const { data } = await cdp.send('Page.captureScreenshot', { format: 'png', captureBeyondViewport: true });
    fs.writeFileSync(path.join(SCREENSHOTS, '12-small-narrow-200.png'), Buffer.from(data, 'base64'));
    assert.deepEqual(page.problems, []);
    await page.close();
  });
});

// Widgets the demo does not show, drawn from a snapshot of the documented shape on a page of its own.
const OTHER_WIDGETS = {
  revision: 1, shown: true, keypad: { sending: true }, popup: null, softKeys: ['Save', '', '', ''],
  model: { name: 'desk phone', softKeyBar: true, softKeys: 4, width: 320, height: 240, visibleLines: 6 },
  tabBar: { labels: ['Mail', 'Calls', 'Tools'], current: 1, active: false, leftUpwards: false },
  screen: {
    kind: 'form', ownerId: 7, title: 'Settings', ticker: 'Ticker news', commands: ['Save'], highlight: true,
    menu: null, proportion: 1, focus: 1,
    items: [
      { kind: 'imageItem', ownerId: 8, label: 'Logo', focusable: false, focused: false, altText: 'logo',
        arrow: false, informsOnOk: false, image: { id: 3, kind: 'png', width: 40, height: 20 } },
      { kind: 'choiceGroup', ownerId: 9, label: 'Ring', focusable: true, focused: true, choiceType: 'exclusive',
        row: 1, choices: [{ text: 'Loud', selected: false, image: null }, { text: 'Soft', selected: true, image: null }] },
      { kind: 'slider', ownerId: 10, label: 'Volume', focusable: true, focused: false, min: 0, max: 10, value: 5,
        interval: 1, automatic: false },
    ],
  },
};

test('a tab bar, a ticker, choices, a slider and an image placeholder are drawn from a snapshot', async () => {
  const page = await openPage(small);
  await page.locator('#display[data-revision]').waitFor({ timeout: WAIT_MS });
  const drawn = await page.evaluate(async (snapshot) => {
    const { renderDisplay } = await import('./display.js');
    const display = document.createElement('div');
    display.className = 'display';
    display.style.setProperty('--scale', '1');
    document.body.prepend(display);
    renderDisplay(display, snapshot);
    const text = (selector) => Array.from(display.querySelectorAll(selector), (node) => node.textContent);
    const image = display.querySelector('.image').getBoundingClientRect();
    return {
      tabs: text('.tab'), current: text('.tab.current'), ticker: text('.ticker'), focused: text('.focused'),
      marks: text('.choice .mark'), slider: display.querySelector('.slider-fill').style.width,
      image: [image.width, image.height], softKeys: text('.softkey-label'),
    };
  }, OTHER_WIDGETS);
  assert.deepEqual(drawn.tabs, ['Mail', 'Calls', 'Tools']);
  assert.deepEqual(drawn.current, ['Calls']);
  assert.deepEqual(drawn.ticker, ['Ticker news']);
  assert.deepEqual(drawn.focused, ['◉Soft'], 'the focused choice row, not the whole group');
  assert.deepEqual(drawn.marks, ['○', '◉']);
  assert.equal(drawn.slider, '50%');
  assert.deepEqual(drawn.image, [40, 20], 'a placeholder of the picture\'s size');
  assert.deepEqual(drawn.softKeys, ['Save', '', '', '']);
  await page.locator('body > .display').screenshot({ path: path.join(SCREENSHOTS, '13-other-widgets.png') });
  await page.close();
});

describe('the lunch order and the voice message of the demo', () => {
  let page;

  before(async () => {
    page = await openPage(items);
  });

  after(async () => {
    assert.deepEqual(page.problems, []);
    await page.close();
  });

  async function focusMenuEntry(text) {
    await page.waitForFunction((wanted) => document.querySelector('#display .focused')?.textContent.includes(wanted),
      text, { timeout: WAIT_MS });
  }

  async function focusItem(label) {
    await page.waitForFunction((wanted) => document.querySelector('#display .item.focused .item-label')
      ?.textContent === wanted || document.querySelector('#display .item .focused')
      ?.closest('.item')?.querySelector('.choice-label')?.textContent === wanted, label, { timeout: WAIT_MS });
  }

  test('radio buttons, check boxes, the popup choice, a slider and a button, each used and sent', async () => {
    await waitForDisplay(page, 'Pick colours');
    for (let i = 0; i < 5; i += 1) {
      await page.keyboard.press('ArrowDown');
    }
    await focusMenuEntry('Order lunch');
    await page.keyboard.press('Enter');
    await waitForDisplay(page, 'Lunch order');
    assert.deepEqual(await page.locator('#display .ticker').allInnerTexts(), ['Lunch is served from 12:00 to 14:00']);
    const marks = () => page.locator('#display .choice .mark').allInnerTexts();
    assert.deepEqual(await marks(), ['○', '◉', '○', '☑', '☐']);

    // Down walks the options field, the string item and each row of the groups.
    for (const key of ['ArrowDown', 'ArrowDown', 'ArrowDown', 'ArrowDown', 'Enter', 'ArrowDown', 'Enter']) {
      await page.keyboard.press(key);
    }
    await page.waitForFunction(() => Array.from(document.querySelectorAll('#display .choice .mark'),
      (mark) => mark.textContent).join('') === '○○◉☐☐', null, { timeout: WAIT_MS });
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowDown');
    await focusItem('Drink');
    await page.keyboard.press('Enter');
    const popup = page.locator('#display .selection-popup');
    await popup.waitFor({ timeout: WAIT_MS });
    assert.deepEqual(await popup.locator('.entry').allInnerTexts(), ['Water', 'Tea', 'Juice']);
    await shot(page, '14-lunch-popup');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('Enter');
    await popup.waitFor({ state: 'detached', timeout: WAIT_MS });
    assert.match(await page.locator('#display .item.focused').innerText(), /Juice/);

    await page.keyboard.press('ArrowDown');
    await focusItem('Portions');
    await page.keyboard.press('ArrowRight');
    await page.locator('#display .item.focused .slider-value', { hasText: '2' }).waitFor({ timeout: WAIT_MS });
    await page.locator('#display .item-value.automatic').waitFor();
    await shot(page, '15-lunch');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowDown');
    await page.locator('#display .item.focused .item-value.button').waitFor({ timeout: WAIT_MS });
    await page.keyboard.press('Enter');
    await waitForDisplay(page, 'order = same-as-yesterday');
    assert.doesNotMatch(await displayText(page), /main =/, 'the button sends only its own pair');

    await page.keyboard.press('Escape');
    await waitForDisplay(page, 'Lunch order');
    await page.keyboard.press('F1');
    await waitForDisplay(page, 'main = salad');
    const text = await displayText(page);
    assert.match(text, /extra = not_bread/);
    assert.match(text, /drink = juice/);
    assert.match(text, /portions = 2/);
  });

  test('the player shows its progress and its keys send their words', async () => {
    await page.keyboard.press('Escape');
    await waitForDisplay(page, 'Lunch order');
    await page.keyboard.press('Escape');
    await focusMenuEntry('Order lunch');
    await page.keyboard.press('ArrowDown');
    await focusMenuEntry('Play a voice');
    await page.keyboard.press('Enter');
    const player = page.locator('#display .popup-player');
    await player.waitFor({ timeout: WAIT_MS });
    assert.match(await player.locator('.player-state').innerText(), /playing/i);
    await page.waitForFunction(() => Number(document.querySelector('#display .popup-player .slider-value')
      ?.textContent) >= 2, null, { timeout: WAIT_MS });
    await shot(page, '16-player');
    await press(page, 'ok');
    await page.locator('#requests .url', { hasText: 'action=pause' }).waitFor({ timeout: WAIT_MS });
    await waitForDisplay(page, 'action = pause');
  });
});

// A table as the phone draws it (the shape the display's snapshot gives a table of contacts).
const cells = (...texts) => [texts.map((text) => ({ text, grey: false, images: [] }))];
const TABLE = {
  revision: 1, shown: true, keypad: { sending: true }, popup: null, softKeys: [],
  model: { name: 'desk phone', softKeyBar: false, softKeys: 0, width: 320, height: 240, visibleLines: 6 },
  tabBar: null,
  screen: {
    kind: 'table', ownerId: 5, commands: [], highlight: true, menu: null, focus: 2, reserveArrow: true,
    header: { lines: cells('Name', 'Phone'), widths: [70, 30] },
    rows: [
      { lines: cells('ann', '3101'), widths: [70, 30], arrow: false, focused: false, ownerId: 6 },
      { lines: cells('bob', '3102'), widths: [70, 30], arrow: false, focused: false, ownerId: 7 },
      { lines: [...cells('cy', '3103'), [{ text: 'away', grey: true, images: [] }, { text: '', grey: false, images: [] }]],
        widths: [70, 30], arrow: false, focused: true, ownerId: 8 },
      { lines: cells('dan', '3104'), widths: [70, 30], arrow: true, focused: false, ownerId: 9 },
    ],
  },
};

test('a table is drawn in columns under its header, with its focused row, grey line and menu arrow', async () => {
  const page = await openPage(small);
  await page.locator('#display[data-revision]').waitFor({ timeout: WAIT_MS });
  const drawn = await page.evaluate(async (snapshot) => {
    const { renderDisplay } = await import('./display.js');
    const display = document.createElement('div');
    display.className = 'display';
    display.style.setProperty('--scale', '1');
    document.body.prepend(display);
    renderDisplay(display, snapshot);
    const text = (selector) => Array.from(display.querySelectorAll(selector), (node) => node.innerText.trim());
    const left = (selector) => Array.from(display.querySelectorAll(selector), (node) =>
      Math.round(node.querySelectorAll('.cell')[1].getBoundingClientRect().left));
    return {
      header: text('.table-header .cell'), focused: text('.table-row.focused'), grey: text('.cell.grey'),
      arrows: display.querySelectorAll('.table-row .arrow').length,
      secondColumn: [...left('.table-header .table-line'), ...left('.table-row .table-line:first-child')],
    };
  }, TABLE);
  assert.deepEqual(drawn.header, ['Name', 'Phone']);
  assert.match(drawn.focused[0], /cy[\s\S]*3103[\s\S]*away/);
  assert.deepEqual(drawn.grey, ['away']);
  assert.equal(drawn.arrows, 1);
  assert.equal(new Set(drawn.secondColumn).size, 1, `the second column starts at one place: ${drawn.secondColumn}`);
  await page.locator('body > .display').screenshot({ path: path.join(SCREENSHOTS, '17-table.png') });
  await page.close();
});

test('the date and time formats chosen on the page reach the phone and come back in its state', async () => {
  const page = await openPage(small);
  await page.locator('#date-format option').first().waitFor({ state: 'attached', timeout: WAIT_MS });
  await page.waitForFunction(() => document.getElementById('time-format').value === '24HR', null, { timeout: WAIT_MS });
  await page.selectOption('#time-format', '12HR');
  await page.selectOption('#date-format', 'MM/DD/YYYY');
  const state = await page.waitForFunction(async () => {
    const now = await (await fetch('api/state')).json();
    return now.timeFormat === '12HR' && now.dateFormat === 'MM/DD/YYYY' && now;
  }, null, { timeout: WAIT_MS, polling: 100 });
  assert.equal((await state.jsonValue()).timeFormat, '12HR');
  await page.selectOption('#time-format', '24HR');
  await page.selectOption('#date-format', 'DD.MM.YYYY');
  await page.waitForFunction(async () => (await (await fetch('api/state')).json()).timeFormat === '24HR', null,
    { timeout: WAIT_MS, polling: 100 });
  assert.deepEqual(page.problems, []);
  await page.close();
});

test('the phone around the application: the LED, a tone, typed digits and the call screen', async () => {
  const page = await openPage(large);
  // The page counts the tones from its first state on; the push must not come before it.
  await page.waitForFunction(() => document.title.endsWith(' — agp-phone'), null, { timeout: WAIT_MS });
  // The demo's own server is the one the start request went to.
  const requests = await (await fetch(`${large.pageUrl}api/requests?after=0`)).json();
  const demoPort = new URL(requests[0].url).port;
  const pushed = await fetch(`${large.pageUrl}api/push`, {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify({ data: `ServerAddr=127.0.0.1&ServerPort=${demoPort}&ProgramName=demo/phone.xml`,
      type: 'active' }),
  });
  assert.equal(pushed.status, 200);
  await waitForDisplay(page, '0301234');
  await page.locator('#led.on').waitFor({ timeout: WAIT_MS });
  await page.locator('#tab-phone').click();
  await page.locator('#tones li', { hasText: 'short tone' }).waitFor({ timeout: WAIT_MS });

  for (const key of ['5', '5', '#']) {
    await press(page, key);
  }
  await waitForDisplay(page, 'digits = 55#');
  await press(page, 'back');
  await waitForDisplay(page, '0301234');

  await page.locator('#ring-number').fill('0309999');
  await page.locator('#ring-form button[type="submit"]').click();
  await page.locator('#call-screen', { hasText: '0309999' }).waitFor({ timeout: WAIT_MS });
  await shot(page, '18-call-screen');
  await page.locator('#calls .call.ringing button', { hasText: 'Answer' }).click();
  await page.locator('#calls .call.connected button', { hasText: 'Hang up' }).click();
  await page.locator('#call-screen').waitFor({ state: 'hidden', timeout: WAIT_MS });
  await waitForDisplay(page, '0301234');
  assert.deepEqual(page.problems, []);
  await page.close();
});
