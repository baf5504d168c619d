// A browser without a window, controlled through its debugging pipe. Needs no library.
import {spawn} from 'node:child_process';
import {existsSync, mkdtempSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';

const kBrowsers = ['/usr/bin/chromium', '/usr/bin/chromium-browser', '/usr/bin/google-chrome'];

// The path of the browser on this machine; undefined if there is none.
export const browserPath = () => [process.env.CHROMIUM, ...kBrowsers].find(path => path && existsSync(path));

export class Browser {
  static async start() {
    const browser = new Browser();
    browser.profile = mkdtempSync(join(tmpdir(), 'vex-page-'));
    browser.process = spawn(browserPath(), ['--headless=new', '--no-sandbox', '--remote-debugging-pipe',
      '--disable-gpu', '--hide-scrollbars', '--force-color-profile=srgb', `--user-data-dir=${browser.profile}`,
      '--no-first-run', '--disable-extensions', '--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1', 'about:blank'],
    {stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe']});
    browser.pending = new Map();
    browser.listeners = [];
    browser.next = 1;
    let text = '';
    browser.process.stdio[4].on('data', data => {
      text += data;
      const parts = text.split('\0');
      text = parts.pop();
      for (const part of parts) browser.take(JSON.parse(part));
    });
    return browser;
  }

  take(message) {
    if (!message.id) return this.listeners.forEach(listener => listener(message));
    const {resolve, reject} = this.pending.get(message.id);
    this.pending.delete(message.id);
    if (message.error) reject(new Error(message.error.message));
    else resolve(message.result);
  }

  send(method, params = {}, sessionId = undefined) {
    const id = this.next++;
    return new Promise((resolve, reject) => {
      this.pending.set(id, {resolve, reject});
      this.process.stdio[3].write(JSON.stringify({id, method, params, sessionId}) + '\0');
    });
  }

  async open(url, {width = 1280, height = 800, scale = 1, dark = false, mobile = false, isOnline = false} = {}) {
    const {targetId} = await this.send('Target.createTarget', {url: 'about:blank'});
    const {sessionId} = await this.send('Target.attachToTarget', {targetId, flatten: true});
    const page = new Page(this, sessionId, targetId);
    await page.start({width, height, scale, dark, mobile, isOnline});
    await page.go(url);
    return page;
  }

  async stop() {
    const ended = new Promise(resolve => this.process.on('exit', resolve));
    await this.send('Browser.close').catch(() => this.process.kill());
    await ended;
    rmSync(this.profile, {recursive: true, force: true, maxRetries: 5});
  }
}

class Page {
  constructor(browser, session, target) {
    Object.assign(this, {browser, session, target, messages: [], requests: []});
    browser.listeners.push(message => message.sessionId === session && this.take(message));
  }

  send(method, params) { return this.browser.send(method, params, this.session); }

  take({method, params}) {
    if (method === 'Runtime.consoleAPICalled') {
      this.messages.push(params.args.map(arg => arg.value ?? arg.description).join(' '));
    } else if (method === 'Runtime.exceptionThrown') {
      this.messages.push(params.exceptionDetails.exception?.description || params.exceptionDetails.text);
    } else if (method === 'Log.entryAdded') {
      this.messages.push(params.entry.text);
    } else if (method === 'Network.requestWillBeSent') {
      this.requests.push(params.request.url);
    } else if (method === 'Page.loadEventFired' && this.loaded) {
      this.loaded();
    }
  }

  async start({width, height, scale, dark, mobile, isOnline}) {
    for (const domain of ['Page', 'Runtime', 'Log', 'Network']) await this.send(`${domain}.enable`);
    if (!isOnline) {
      await this.send('Network.emulateNetworkConditions',
        {offline: true, latency: 0, downloadThroughput: 0, uploadThroughput: 0});
    }
    await this.send('Emulation.setDeviceMetricsOverride', {width, height, deviceScaleFactor: scale, mobile});
    if (mobile) await this.send('Emulation.setTouchEmulationEnabled', {enabled: true});
    await this.send('Emulation.setEmulatedMedia',
      {features: [{name: 'prefers-color-scheme', value: dark ? 'dark' : 'light'}]});
  }

  async go(url) {
    const loaded = new Promise(resolve => { this.loaded = resolve; });
    const begin = performance.now();
    await this.send('Page.navigate', {url});
    await loaded;
    await this.run('new Promise(done => requestAnimationFrame(() => requestAnimationFrame(() => done(1))))');
    this.loadTime = performance.now() - begin;
  }

  // Evaluates an expression in the page. The value may be a promise.
  async run(expression) {
    const {result, exceptionDetails} = await this.send('Runtime.evaluate',
      {expression, awaitPromise: true, returnByValue: true, userGesture: true});
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description || exceptionDetails.text);
    return result.value;
  }

  // The coordinates of the centre of the element in the window.
  async middle(selector) {
    const place = await this.run(`(() => {
      const element = document.querySelector(${JSON.stringify(selector)});
      element.scrollIntoView({block: 'center', behavior: 'instant'});
      const box = element.getBoundingClientRect();
      return {x: box.x + box.width / 2, y: box.y + box.height / 2};
    })()`);
    return place;
  }

  mouse(type, {x, y}, more = {}) {
    return this.send('Input.dispatchMouseEvent',
      {type, x, y, button: type === 'mouseMoved' && !more.buttons ? 'none' : 'left', clickCount: 1, ...more});
  }
  async clickAt(place, more = {}) {
    await this.mouse('mouseMoved', place);
    await this.mouse('mousePressed', place, more);
    await this.mouse('mouseReleased', place, more);
    await this.settle();
  }
  async click(selector, more = {}) { await this.clickAt(await this.middle(selector), more); }
  async drag(from, to) {
    await this.mouse('mouseMoved', from);
    await this.mouse('mousePressed', from);
    for (const share of [0.25, 0.5, 0.75, 1]) {
      await this.mouse('mouseMoved', {x: from.x + (to.x - from.x) * share, y: from.y + (to.y - from.y) * share}, {buttons: 1});
    }
    await this.mouse('mouseReleased', to);
    await this.settle();
  }
  async press(key, modifiers = 0) {
    const code = {' ': 'Space'}[key] || key;
    const text = key === ' ' ? ' ' : undefined;
    await this.send('Input.dispatchKeyEvent', {type: 'keyDown', key, code, text, modifiers});
    await this.send('Input.dispatchKeyEvent', {type: 'keyUp', key, code, modifiers});
    await this.settle();
  }
  // Waits until the changes are drawn.
  settle() { return this.run('new Promise(done => requestAnimationFrame(() => requestAnimationFrame(() => done(1))))'); }

  async screenshot(full = false) {
    const {data} = await this.send('Page.captureScreenshot', {format: 'png', captureBeyondViewport: full,
      ...(full ? {clip: {...(await this.run('({x: 0, y: 0, width: innerWidth, height: document.documentElement.scrollHeight})')), scale: 1}} : {})});
    return Buffer.from(data, 'base64');
  }
  async pdf() {
    const {data} = await this.send('Page.printToPDF', {printBackground: false, preferCSSPageSize: true});
    return Buffer.from(data, 'base64');
  }
  close() { return this.browser.send('Target.closeTarget', {targetId: this.target}); }
}
