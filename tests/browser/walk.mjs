// A person's first session with Tidewell, in headless Chromium against the real server: the
// welcome screen, the first administrator, the calendar views, an item added with the date
// picker, changed, completed and deleted, the group screen, a second user in a group of his
// own, and that user's options and search, with the help screens on the way. Every screen is
// checked for script errors, failed requests, broken images and stray links, and saved as a
// screenshot.
//
//   node walk.mjs --tidewell PATH/tidewell --screenshots DIR [--chromium /usr/bin/chromium]
//
// Prints one line per screen and "N passed, N failed" at the end; exits non-zero on failure.

import { spawn } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { chromium } from 'playwright-core';

const NOW = '2026-11-21 09:30:00';

function Arguments() {
  const options = { chromium: '/usr/bin/chromium' };
  const argv = process.argv.slice(2);
  for (let i = 0; i < argv.length; i += 2) {
    const name = argv[i].replace(/^--/, '');
    if (!['tidewell', 'screenshots', 'chromium'].includes(name) || argv[i + 1] === undefined) {
      throw new Error(`unknown or incomplete option ${argv[i]}`);
    }
    options[name] = argv[i + 1];
  }
  if (!options.tidewell || !options.screenshots) {
    throw new Error('usage: node walk.mjs --tidewell PATH --screenshots DIR [--chromium PATH]');
  }
  return options;
}

// `tidewell serve` on a free port with a fresh SQLite database in `folder`; resolves once the
// server has said where it listens. The log is kept for failure reports.
function StartServer(binary, folder) {
  const config = path.join(folder, 'site.conf');
  fs.writeFileSync(config, [
    'Visible = True',
    'ImagePath = images/',
    `ConnectionString = Provider=SQLite;Data Source=${path.join(folder, 'calendar.db')}`,
    '',
  ].join('\n'));
  const child = spawn(binary, ['serve', '--config', config, '--listen', '127.0.0.1:0'], {
    env: { ...process.env, TIDEWELL_NOW: NOW },
    stdio: ['ignore', 'ignore', 'pipe'],
  });
  const server = { child, log: '' };
  return new Promise((resolve, reject) => {
    const timer = setTimeout(() => {
      child.kill('SIGKILL');  // nobody else holds it to stop it
      reject(new Error(`server did not start:\n${server.log}`));
    }, 20000);
    child.stderr.setEncoding('utf8');
    child.stderr.on('data', (text) => {
      server.log += text;
      const match = /serving (http:\/\/[^/]+\/)/.exec(server.log);
      if (match && !server.base) {
        server.base = match[1];
        clearTimeout(timer);
        resolve(server);
      }
    });
    child.on('exit', (code) => {
      clearTimeout(timer);
      if (!server.base) reject(new Error(`server exited with ${code}:\n${server.log}`));
    });
  });
}

// Asks the server to stop and waits for it; false (after a report) unless it exits cleanly,
// which under the sanitizers also means that it leaked nothing.
function StopServer(server) {
  return new Promise((resolve) => {
    const report = (text) => {
      console.log(`FAIL ${text}\n-- server log --\n${server.log.split('\n').slice(-20).join('\n')}`);
      resolve(false);
    };
    if (server.child.exitCode !== null || server.child.signalCode !== null) {
      report(`server ended early: ${server.child.exitCode ?? server.child.signalCode}`);
      return;
    }
    const timer = setTimeout(() => {
      server.child.kill('SIGKILL');
      report('server did not stop within 20 s of SIGTERM');
    }, 20000);
    server.child.on('exit', (code, signal) => {
      clearTimeout(timer);
      if (code === 0) resolve(true);
      else report(`server stopped with ${code ?? signal}`);
    });
    server.child.kill('SIGTERM');
  });
}

// Everything that goes wrong in any page of the context (the calendar and the date picker
// pop-up): console errors, uncaught exceptions, failed requests and HTTP errors, anything the
// Content-Security-Policy refused, and a page sent without that policy (the walk proves the
// policy allows everything the screens do, so it must be in force).
async function WatchForProblems(context) {
  const problems = [];
  await context.addInitScript(() => {
    document.addEventListener('securitypolicyviolation', (event) => {
      console.error(`Content Security Policy violation: ${event.violatedDirective} ` +
        `blocked ${event.blockedURI || 'inline'} at ${event.sourceFile}:${event.lineNumber}`);
    });
  });
  const watch = (page) => {
    page.on('console', (message) => {
      if (message.type() === 'error') {
        problems.push(`console error: ${message.text()}`);
      } else if (/Content.Security.Policy/i.test(message.text())) {
        problems.push(`policy report: ${message.text()}`);
      }
    });
    page.on('response', (response) => {
      if (response.request().resourceType() !== 'document') return;
      const headers = response.headers();
      if (!headers['content-security-policy'] || headers['x-content-type-options'] !== 'nosniff' ||
        headers['referrer-policy'] !== 'no-referrer') {
        problems.push(`page without its security headers: ${response.url()}`);
      }
    });
    page.on('pageerror', (error) => problems.push(`script error: ${error.message}`));
    page.on('requestfailed', (request) => {
      problems.push(`request failed: ${request.url()} (${request.failure()?.errorText})`);
    });
    page.on('response', (response) => {
      if (response.status() >= 400) problems.push(`HTTP ${response.status()}: ${response.url()}`);
    });
    page.on('dialog', (dialog) => {
      problems.push(`unexpected dialog: ${dialog.message()}`);
      dialog.dismiss().catch(() => {});
    });
  };
  context.on('page', watch);
  return problems;
}

// What every calendar page must have, read from the page itself: the style sheet applied,
// every image loaded, the screen's title bar, and links and forms that stay on the calendar.
async function InspectPage(page) {
  return page.evaluate(() => {
    const found = { problems: [] };
    const sheet = [...document.styleSheets].find((s) => s.href && s.href.endsWith('tidewell.css'));
    if (!sheet || sheet.cssRules.length === 0) found.problems.push('style sheet not applied');
    for (const image of document.images) {
      if (!image.complete || image.naturalWidth === 0) {
        found.problems.push(`image not shown: ${image.getAttribute('src')}`);
      }
    }
    const here = location.origin + location.pathname;
    for (const link of document.querySelectorAll('a[href]')) {
      const href = link.getAttribute('href');
      if (href.startsWith('javascript:')) continue;
      const target = new URL(href, location.href);
      if (target.origin + target.pathname !== here || !target.searchParams.get('WS')) {
        found.problems.push(`link leads off the calendar: ${href}`);
      }
    }
    for (const form of document.forms) {
      const target = new URL(form.getAttribute('action') ?? '', location.href);
      if (target.origin + target.pathname !== here) {
        found.problems.push(`form ${form.name} posts off the calendar: ${form.getAttribute('action')}`);
      }
    }
    // Markup that a browser could not read ends up on the screen as text.
    const stray = /\b(cellpadding|cellspacing|border|bgcolor|valign|width|height)=\S*/
      .exec(document.body.innerText);
    if (stray) found.problems.push(`markup shown as text: ${stray[0]}`);
    found.title = document.title;
    found.titleBars = [...document.querySelectorAll('td.mwdname b, td.datepicker b')]
      .map((b) => b.textContent.trim());
    found.tabs = [...document.querySelectorAll('a.tabs')].map((a) => a.textContent.trim());
    // The selected tab's cell has the frame colour; the others sit in tables of their own.
    found.selectedTab = document.querySelector('td.tabs[bgcolor] a.tabs')?.textContent.trim();
    found.scrollWidth = document.documentElement.scrollWidth;
    found.scrollHeight = document.documentElement.scrollHeight;
    found.innerWidth = window.innerWidth;
    found.innerHeight = window.innerHeight;
    return found;
  });
}

class Walk {
  // `problems` collects what goes wrong in the browser; `main` is the calendar's window, whose
  // picture is taken when a step fails before it reaches its screen.
  constructor(problems, folder, main) {
    this.problems = problems;
    this.folder = folder;
    this.main = main;
    this.passed = 0;
    this.failed = 0;
    this.number = 0;
  }

  // Runs one step of the walk, then checks the screen it leads to and saves its picture.
  // `expect.title` is the screen's title bar, `expect.tabs` whether the view tabs belong on
  // it (the sign-in screens and the date picker have none), `expect.view` the calendar view
  // whose tab is selected, `expect.check` what else the screen must show.
  async step(name, expect, action) {
    this.number += 1;
    const file = `${String(this.number).padStart(2, '0')}-${name}.png`;
    const failures = [];
    let page = this.main;
    try {
      page = await action();
      await page.waitForLoadState('load');
      const found = await InspectPage(page);
      failures.push(...found.problems);
      if (found.title !== 'Tidewell') failures.push(`document title is "${found.title}"`);
      if (!found.titleBars.includes(expect.title)) {
        failures.push(`title bar "${expect.title}" missing; bars: ${JSON.stringify(found.titleBars)}`);
      }
      const tabs = ['MonthView', 'WeekView', 'DayView', 'TimeView'];
      if (expect.tabs && JSON.stringify(found.tabs) !== JSON.stringify(tabs)) {
        failures.push(`view tabs missing: ${JSON.stringify(found.tabs)}`);
      }
      if (!expect.tabs && found.tabs.length !== 0) failures.push('view tabs on a screen without them');
      if (expect.view && found.selectedTab !== expect.view) {
        failures.push(`selected tab is ${found.selectedTab}, expected ${expect.view}`);
      }
      if (found.scrollWidth > found.innerWidth) {
        failures.push(`page wider than its window: ${found.scrollWidth}px in ${found.innerWidth}px`);
      }
      // The pop-up opens without scroll bars, so whatever does not fit is lost.
      if (expect.popup && found.scrollHeight > found.innerHeight) {
        failures.push(`pop-up taller than its window: ${found.scrollHeight}px in ${found.innerHeight}px`);
      }
      if (expect.check) failures.push(...(await expect.check(page)));
    } catch (error) {
      failures.push(`step failed: ${error.stack ?? error}`);
    }
    // Late console errors and failed image loads of this screen count against it too.
    await new Promise((resolve) => setTimeout(resolve, 100));
    failures.push(...this.problems.splice(0));
    if (page && !page.isClosed()) {
      // The markup beside the picture, for reading when a step fails.
      fs.writeFileSync(path.join(this.folder, file.replace(/png$/, 'html')), await page.content());
      await page.screenshot({ path: path.join(this.folder, file), fullPage: true }).catch((error) => {
        failures.push(`screenshot failed: ${error.message}`);
      });
    }
    if (failures.length === 0) {
      this.passed += 1;
      console.log(`ok   ${file}`);
    } else {
      this.failed += 1;
      console.log(`FAIL ${file}\n  ${failures.join('\n  ')}`);
      throw new Error(`step ${name} failed`);
    }
    return page;
  }
}

// Text checks for a step: each `piece` must be on the page.
function Shows(...pieces) {
  return async (page) => {
    const text = await page.locator('body').innerText();
    return pieces.filter((piece) => !text.includes(piece)).map((piece) => `"${piece}" not shown`);
  };
}

// The headings of the time view's items, top to bottom, must be `headings`.
function ItemOrder(headings) {
  return async (page) => {
    const shown = await page.locator('a[title="Edit this Item"]').evaluateAll((links) =>
      links.map((link) => link.closest('tr').innerText));
    const order = headings.map((heading) => shown.findIndex((row) => row.includes(heading)));
    const sorted = order.every((at, i) => at >= 0 && (i === 0 || at > order[i - 1]));
    return sorted && shown.length === headings.length ? []
      : [`items in the order ${JSON.stringify(shown)}, expected ${JSON.stringify(headings)}`];
  };
}

// The form field `selector` must hold `value`.
function FieldIs(selector, value) {
  return async (page) => {
    const found = await page.inputValue(selector);
    return found === value ? [] : [`${selector} holds "${found}", expected "${value}"`];
  };
}

async function WalkThrough(walk, main, base) {
  await walk.step('welcome', { title: 'Welcome to Hollowfen Tidewell.', tabs: false }, async () => {
    await main.goto(base);
    return main;
  });
  await walk.step('first-administrator', { title: 'Administrator Options.', tabs: true,
    check: Shows('New Administrator/User Account.') }, async () => {
    await main.click('input[value=Next]');
    return main;
  });
  await walk.step('administrator-created', { title: 'Administrator Options.', tabs: true }, async () => {
    await main.fill('input[name=username]', 'harbour');
    await main.fill('input[name=initials]', 'HM');
    await main.fill('input[name=newgroup]', 'Quayside');
    await main.fill('input[name=password]', 'tide-4-all');
    await main.fill('input[name=confirm]', 'tide-4-all');
    await main.click('input[value="Add New User"]');
    return main;
  });
  await walk.step('logged-out', { title: 'Hollowfen Tidewell Login Screen.', tabs: false }, async () => {
    await main.click('a[title="Logout / Change User"]');
    return main;
  });
  await walk.step('month-view', { title: 'November 2026', tabs: true, view: 'MonthView',
    check: Shows('Group: Quayside | User: harbour') }, async () => {
    await main.fill('input[name=username]', 'harbour');
    await main.fill('input[name=password]', 'tide-4-all');
    await main.click('input[type=submit]');
    return main;
  });
  // Right after signing in, the form offers the day being viewed: a date, no time of day.
  await walk.step('item-form', { title: 'Add Item to Schedule.', tabs: true,
    check: FieldIs('input[name=datestamp]', '11/21/2026') }, async () => {
    await main.click('a[title="Add New Item"]');
    return main;
  });
  await walk.step('item-help', { title: 'Help On Item Information.', tabs: true }, async () => {
    await main.click('a[title="Show me help for this page."]');
    return main;
  });
  await walk.step('item-form-again', { title: 'Add Item to Schedule.', tabs: true }, async () => {
    await main.click('a[title="Add New Item"]');
    return main;
  });
  let picker = null;
  await walk.step('date-picker', { title: 'November 2026', tabs: false, popup: true }, async () => {
    [picker] = await Promise.all([main.waitForEvent('popup'), main.click('a[title="Date Picker"]')]);
    return picker;
  });
  await walk.step('item-filled', { title: 'Add Item to Schedule.', tabs: true,
    check: async () => {
      const date = await main.inputValue('input[name=datestamp]');
      return date === '11/24/2026' ? [] : [`the date picker wrote "${date}"`];
    } }, async () => {
    // A day of the pop-up writes its date into the form and closes the window.
    await Promise.all([picker.waitForEvent('close'), picker.click(`a[href*="'11/24/2026'"]`)]);
    await main.selectOption('select[name=timestamp]', '14');
    await main.selectOption('select[name=timetext]', { label: '30' });
    await main.fill('input[name=heading]', 'Harbour board meeting');
    await main.fill('textarea[name=description]', 'Tide tables for the winter season.');
    await main.check('input[name=urgent]');
    return main;
  });
  await walk.step('item-added', { title: 'November 2026', tabs: true, view: 'MonthView',
    check: Shows('Harbour..') }, async () => {
    await main.click('input[value=Add]');
    return main;
  });
  await walk.step('week-view', { title: 'November 2026', tabs: true, view: 'WeekView',
    check: Shows('Harbour board meeting') }, async () => {
    // The week mark beside Sunday the 22nd opens that week.
    await main.locator('a:has(img[src$="icon_week.gif"])').nth(3).click();
    return main;
  });
  await walk.step('day-view', { title: 'Tuesday, November 24, 2026', tabs: true, view: 'DayView',
    check: Shows('Harbour board meeting') }, async () => {
    await main.locator('a.dtname', { hasText: /Tue\s*24/ }).click();
    return main;
  });
  const hour = 'Tuesday, November 24, 2026 @ 14:00';
  await walk.step('time-view', { title: hour, tabs: true, view: 'TimeView',
    check: Shows('Harbour board meeting', 'Tide tables for the winter season.') }, async () => {
    await main.click('a[title^="14:30 - Harbour board meeting"]');
    return main;
  });
  // A second item in the same hour, so that sorting has something to change. The form opens
  // on the hour being viewed.
  await walk.step('second-item-form', { title: 'Add Item to Schedule.', tabs: true,
    check: async () => {
      const date = await main.inputValue('input[name=datestamp]');
      const time = await main.inputValue('select[name=timestamp]');
      return date === '11/24/2026' && time === '14' ? [] : [`form opened on ${date} ${time}`];
    } }, async () => {
    await main.click('a[title="Add New Item"]');
    return main;
  });
  // Unsorted, the urgent item comes first.
  await walk.step('time-view-two-items', { title: hour, tabs: true, view: 'TimeView',
    check: ItemOrder(['Harbour board meeting', 'Anchor chain inspection']) }, async () => {
    await main.selectOption('select[name=timetext]', { label: '15' });
    await main.fill('input[name=heading]', 'Anchor chain inspection');
    await main.click('input[value=Add]');
    return main;
  });
  // The time heading sorts descending first, then, clicked again, ascending.
  await walk.step('time-view-latest-first', { title: hour, tabs: true, view: 'TimeView',
    check: ItemOrder(['Harbour board meeting', 'Anchor chain inspection']) }, async () => {
    await main.click('a[title="Sort by Time"]');
    return main;
  });
  await walk.step('time-view-earliest-first', { title: hour, tabs: true, view: 'TimeView',
    check: ItemOrder(['Anchor chain inspection', 'Harbour board meeting']) }, async () => {
    await main.click('a[title="Sort by Time"]');
    return main;
  });
  const harbourRow = main.locator('tr', { hasText: 'Harbour board meeting' }).last();
  await walk.step('edit-form', { title: 'Edit Scheduled Item.', tabs: true,
    check: async () => {
      const heading = await main.inputValue('input[name=heading]');
      const date = await main.inputValue('input[name=datestamp]');
      return heading === 'Harbour board meeting' && date === '11/24/2026' ? []
        : [`edit form shows "${heading}" on "${date}"`];
    } }, async () => {
    await harbourRow.locator('a[title="Edit this Item"]').click();
    return main;
  });
  await walk.step('item-edited', { title: hour, tabs: true, view: 'TimeView',
    check: Shows('Harbour board meeting (moved to the quay office)', 'Bring the winter tide tables.') },
  async () => {
    await main.fill('input[name=heading]', 'Harbour board meeting (moved to the quay office)');
    await main.fill('textarea[name=description]', 'Bring the winter tide tables.');
    await main.click('input[value=Update]');
    return main;
  });
  await walk.step('completed-form', { title: 'Edit Scheduled Item.', tabs: true }, async () => {
    await harbourRow.locator('a[title="Edit this Item"]').click();
    await main.check('input[name=complete]');
    return main;
  });
  // A completed item is written in grey.
  await walk.step('item-completed', { title: hour, tabs: true, view: 'TimeView',
    check: async () => {
      const grey = await main.locator('font[color="#adadad"]',
        { hasText: 'Harbour board meeting (moved to the quay office)' }).count();
      return grey === 1 ? [] : ['the completed item is not greyed'];
    } }, async () => {
    await main.click('input[value=Update]');
    return main;
  });
  await walk.step('item-deleted', { title: hour, tabs: true, view: 'TimeView',
    check: ItemOrder(['Anchor chain inspection']) }, async () => {
    await harbourRow.locator('a[title="Delete this Item"]').click();
    return main;
  });
  await walk.step('administrator-options', { title: 'Administrator Options.', tabs: true,
    check: Shows('Quayside - harbour') }, async () => {
    await main.click('a[title="Administrator Options"]');
    return main;
  });
  await walk.step('new-user-form', { title: 'Administrator Options.', tabs: true,
    check: async () => {
      const name = await main.inputValue('input[name=username]');
      const add = await main.locator('input[value="Add New User"]').count();
      return name === '' && add === 1 ? [] : ['no empty form for a new user'];
    } }, async () => {
    await main.click('input[value="New User"]');
    return main;
  });
  await walk.step('second-user-created', { title: 'Administrator Options.', tabs: true,
    check: Shows('Lighthouse - keeper') }, async () => {
    await main.fill('input[name=username]', 'keeper');
    await main.fill('input[name=initials]', 'LK');
    await main.fill('input[name=newgroup]', 'Lighthouse');
    await main.fill('input[name=password]', 'lamp-and-lens');
    await main.fill('input[name=confirm]', 'lamp-and-lens');
    await main.click('input[value="Add New User"]');
    return main;
  });
  await walk.step('group-options', { title: 'Administrator Group Options.', tabs: true,
    check: Shows('Change Group Name:', 'No Groups Unassigned') }, async () => {
    await main.click('input[value=Manage]');
    return main;
  });
  // A group nobody belongs to yet is offered for deletion.
  await walk.step('group-added', { title: 'Administrator Group Options.', tabs: true,
    check: async () => {
      const offered = await main.locator('select[name=rgroupid] option', { hasText: 'Dredging' }).count();
      return offered === 1 ? [] : ['the new group is not among the unassigned groups'];
    } }, async () => {
    await main.fill('input[name=newgroup]', 'Dredging');
    await main.click('input[value=Add]');
    return main;
  });
  await walk.step('group-deleted', { title: 'Administrator Group Options.', tabs: true,
    check: Shows('No Groups Unassigned') }, async () => {
    await main.click('input[value=Delete]');
    return main;
  });
  await walk.step('group-help', { title: 'Help On Group Information.', tabs: true }, async () => {
    await main.click('a[title="Show me help for this page."]');
    return main;
  });
  await walk.step('administrator-logged-out', { title: 'Hollowfen Tidewell Login Screen.', tabs: false },
    async () => {
      await main.click('a[title="Logout / Change User"]');
      return main;
    });
  await walk.step('second-user-month-view', { title: 'November 2026', tabs: true, view: 'MonthView',
    check: Shows('Group: Lighthouse | User: keeper') }, async () => {
    await main.fill('input[name=username]', 'keeper');
    await main.fill('input[name=password]', 'lamp-and-lens');
    await main.click('input[type=submit]');
    return main;
  });
  // An item on the day shown, with the date the form offers (no date picker this time).
  await walk.step('today-item-form', { title: 'Add Item to Schedule.', tabs: true,
    check: FieldIs('input[name=datestamp]', '11/21/2026') }, async () => {
    await main.click('a[title="Add New Item"]');
    await main.fill('input[name=heading]', 'Lamp wick replaced');
    return main;
  });
  await walk.step('today-item-added', { title: 'November 2026', tabs: true, view: 'MonthView',
    check: Shows('Lamp wi..') }, async () => {
    await main.click('input[value=Add]');
    return main;
  });
  await walk.step('user-options', { title: 'keeper Options.', tabs: true }, async () => {
    await main.click('a[title="User Options"]');
    return main;
  });
  await walk.step('user-help', { title: 'Help On User Information.', tabs: true }, async () => {
    await main.click('a[title="Show me help for this page."]');
    return main;
  });
  await walk.step('user-options-again', { title: 'keeper Options.', tabs: true }, async () => {
    await main.click('a[title="User Options"]');
    return main;
  });
  // "Update" saves the options and goes back to the calendar; they show again when reopened.
  await walk.step('user-options-updated', { title: 'November 2026', tabs: true,
    check: Shows('Group: Lighthouse | User: keeper') }, async () => {
    await main.selectOption('select[name=defaultview]', { label: 'WeekView' });
    await main.click('input[value=Update]');
    return main;
  });
  await walk.step('user-options-reopened', { title: 'keeper Options.', tabs: true,
    check: async () => {
      const view = await main.locator('select[name=defaultview] option:checked').innerText();
      return view === 'WeekView' ? [] : [`the default view reads ${view} after the update`];
    } }, async () => {
    await main.click('a[title="User Options"]');
    return main;
  });
  await walk.step('search-form', { title: 'Search for Items.', tabs: true,
    check: FieldIs('input[name=startdate]', '11/21/2026') }, async () => {
    await main.click('a[title="Search for Items"]');
    return main;
  });
  await walk.step('search-results', { title: 'Search for Items.', tabs: true,
    check: Shows('Lamp wick replaced') }, async () => {
    await main.fill('input[name=search]', 'wick');
    await main.click('input[value=Search]');
    return main;
  });
  await walk.step('search-help', { title: 'Help On Search Information.', tabs: true }, async () => {
    await main.click('a[title="Show me help for this page."]');
    return main;
  });
  await walk.step('logged-out-at-the-end', { title: 'Hollowfen Tidewell Login Screen.', tabs: false },
    async () => {
      await main.click('a[title="Logout / Change User"]');
      return main;
    });
}

async function Main() {
  const options = Arguments();
  fs.mkdirSync(options.screenshots, { recursive: true });
  for (const old of fs.readdirSync(options.screenshots)) {
    if (/\.(png|html)$/.test(old)) fs.rmSync(path.join(options.screenshots, old));
  }
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'tidewell-browser-'));
  let server = null;
  let browser = null;
  let walk = null;
  try {
    server = await StartServer(options.tidewell, folder);
    browser = await chromium.launch({
      executablePath: options.chromium,
      headless: true,
      args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
        '--disable-background-networking', '--disable-component-update', '--disable-sync'],
    });
    const context = await browser.newContext({ viewport: { width: 800, height: 600 } });
    context.setDefaultTimeout(15000);
    const problems = await WatchForProblems(context);
    const main = await context.newPage();
    walk = new Walk(problems, options.screenshots, main);
    await WalkThrough(walk, main, server.base);
  } catch (error) {
    if (!walk || walk.failed === 0) console.log(`FAIL ${error.stack ?? error}`);
    if (server) console.log(`-- server log --\n${server.log.split('\n').slice(-40).join('\n')}`);
    process.exitCode = 1;
  } finally {
    if (browser) await browser.close();
    if (server && !(await StopServer(server))) process.exitCode = 1;
    fs.rmSync(folder, { recursive: true, force: true });
  }
  const passed = walk ? walk.passed : 0;
  const failed = walk ? Math.max(walk.failed, process.exitCode ? 1 : 0) : 1;
  console.log(`${passed} passed, ${failed} failed`);
}

await Main();
