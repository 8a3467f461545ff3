// A headless Chromium, spoken to over its own pipe: commands and events are JSON, each ended by a zero byte.
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const answerWait = 60000;  // milliseconds

export async function startBrowser() {
  const profile = mkdtempSync(join(tmpdir(), 'numalink-browser-'));
  const child = spawn('chromium', ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
    '--disable-background-networking', '--disable-component-update', '--disable-sync', '--disable-dev-shm-usage',
    `--user-data-dir=${profile}`, '--remote-debugging-pipe', 'about:blank'],
    { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
  const waiting = new Map(), listeners = [];
  let last = 0, rest = '';
  child.stdio[4].setEncoding('utf8');
  child.stdio[4].on('data', text => {
    const parts = (rest + text).split('\0');
    rest = parts.pop();
    for (const part of parts) {
      const message = JSON.parse(part);
      if (!message.id) { for (const listener of listeners) listener(message); continue; }
      const { done, fail } = waiting.get(message.id);
      waiting.delete(message.id);
      message.error ? fail(new Error(JSON.stringify(message.error))) : done(message.result);
    }
  });
  const send = (method, params = {}, sessionId = undefined) => new Promise((done, fail) => {
    const id = ++last;
    const timer = setTimeout(() => fail(new Error(`no answer to ${method}`)), answerWait);
    waiting.set(id, { done: value => { clearTimeout(timer); done(value); }, fail: fault => { clearTimeout(timer); fail(fault); } });
    child.stdio[3].write(JSON.stringify({ id, method, params, sessionId }) + '\0');
  });
  const version = (await send('Browser.getVersion')).product;
  return {
    version, send, listeners,
    async end() {
      const gone = new Promise(done => child.once('exit', done));
      child.kill();
      await gone;
      rmSync(profile, { recursive: true, force: true, maxRetries: 5 });
    },
  };
}

// A page of its own; keeps what it asked the network for and what it complained of.
export async function openPage(browser, url, { width = 1280, height = 900, scale = 1, mobile = false, dark = false, language = 'en' } = {}) {
  const { targetId } = await browser.send('Target.createTarget', { url: 'about:blank' });
  const { sessionId } = await browser.send('Target.attachToTarget', { targetId, flatten: true });
  const send = (method, params) => browser.send(method, params, sessionId);
  const page = { send, requests: [], complaints: [] };
  let loaded = null;
  browser.listeners.push(message => {
    if (message.sessionId !== sessionId) return;
    if (message.method === 'Network.requestWillBeSent') page.requests.push(message.params.request.url);
    if (message.method === 'Log.entryAdded') page.complaints.push(message.params.entry.text);
    if (message.method === 'Runtime.exceptionThrown') page.complaints.push(JSON.stringify(message.params.exceptionDetails));
    if (message.method === 'Runtime.consoleAPICalled') page.complaints.push(JSON.stringify(message.params.args));
    if (message.method === 'Page.loadEventFired') loaded();
  });
  for (const area of ['Page', 'Network', 'Log', 'Runtime']) await send(`${area}.enable`);
  await send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: scale, mobile });
  await send('Emulation.setTouchEmulationEnabled', { enabled: mobile });
  await send('Emulation.setEmulatedMedia', { features: [{ name: 'prefers-color-scheme', value: dark ? 'dark' : 'light' }] });
  await send('Page.addScriptToEvaluateOnNewDocument', { source: `Object.defineProperty(navigator, 'languages', { value: ['${language}'] })` });
  const done = new Promise(resolve => { loaded = resolve; });
  await send('Page.navigate', { url });
  await done;
  page.value = async expression => {
    const { result, exceptionDetails } = await send('Runtime.evaluate', { expression, awaitPromise: true, returnByValue: true });
    if (exceptionDetails) throw new Error(JSON.stringify(exceptionDetails));
    return result.value;
  };
  page.until = async (expression, milliseconds = 20000) => {
    for (const end = Date.now() + milliseconds; Date.now() < end; await new Promise(done => setTimeout(done, 30)))
      if (await page.value(expression)) return true;
    return false;
  };
  page.picture = async () => Buffer.from((await send('Page.captureScreenshot', { format: 'png' })).data, 'base64');
  page.close = () => browser.send('Target.closeTarget', { targetId });
  return page;
}
