// The page around the player: it draws what the player shows and hands it the keys. The player sleeps whenever a run
// waits, and at the latest every few milliseconds, so that the page stays alive whatever a program does.
'use strict';
(() => {
const screenWide = 128, screenHigh = 64, shapePad = 2, shapeStop = 7, arrows = [3, 4, 5, 6];
const shortestPress = 60;  // milliseconds: a wait of a run looks at the key every 50 at the longest
const stopCode = 34, endNames = ['stopped', 'ended', 'ended', 'ended', 'ended', 'stopped', 'outOfMemory', 'damaged'];
// In the order of the player's keyboard keys.
const namedKeys = ['Tab', 'Enter', 'Shift', ' ', 'ArrowLeft', 'ArrowUp', 'ArrowRight', 'ArrowDown', '[', '(', ')', ',', 'Backspace'];
const letterPlace = namedKeys.length, digitPlace = letterPlace + 26, signPlace = digitPlace + 10, functionPlace = signPlace + 5;
const signs = '.*/+-';

const element = id => document.getElementById(id);
const texts = JSON.parse(element('texts').textContent);
const utf8 = new TextEncoder(), fromUtf8 = new TextDecoder();
let language = 'English', player = null, running = false, wanted = false, told = 'running', toldMore = '';

const say = name => texts.page[name][texts.languages.indexOf(language)];

function bytesOf(id) {
  const letters = atob(element(id).textContent.trim());
  return Uint8Array.from(letters, letter => letter.charCodeAt(0));
}

async function inflated(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// What the player imports, and how its long calls are made.
function sleeper() {
  let wakeUp = null;
  const sleep = milliseconds => new Promise(done => {
    let timer = 0;
    const end = () => { wakeUp = null; clearTimeout(timer); channel.port1.onmessage = null; done(); };
    if (milliseconds > 0) { timer = setTimeout(end, milliseconds); wakeUp = end; return; }
    channel.port1.onmessage = end;  // quicker than a timer, and behind whatever the user has done
    channel.port2.postMessage(0);
  });
  const channel = new MessageChannel();
  return { sleep, wake: () => { if (wakeUp) wakeUp(); } };
}

async function loadPlayer() {
  const module = await WebAssembly.compile(await inflated(bytesOf('player')));
  const { sleep, wake } = sleeper();
  const page = { wake, now: () => performance.now() };
  let exports = null, stack = 0, pending = null;
  // The player can't keep its stack while it sleeps: it unwinds it, the call returns, and winds it up again.
  const unwinding = 1, rewinding = 2;
  page.sleep = milliseconds => {
    if (exports.asyncify_get_state() === rewinding) { exports.asyncify_stop_rewind(); return; }
    pending = sleep(milliseconds);
    exports.asyncify_start_unwind(stack);
  };
  exports = (await WebAssembly.instantiate(module, { page, wasi_snapshot_preview1: systemCalls(() => exports.memory) })).exports;
  exports._initialize();
  stack = exports.playerStack();
  const call = async (name, ...values) => {
    let result = exports[name](...values);
    while (exports.asyncify_get_state() === unwinding) {
      exports.asyncify_stop_unwind();
      await pending;
      exports.asyncify_start_rewind(stack);
      result = exports[name](...values);
    }
    return result;
  };
  return { exports, call };
}

// The C library behind the player asks for the time alone; it has no files.
function systemCalls(memory) {
  const badFile = 8, no = () => badFile;
  return { fd_close: no, fd_seek: no, fd_write: no, clock_time_get: (clock, precision, at) => {
    new DataView(memory().buffer).setBigUint64(at, BigInt(Math.round(performance.now() * 1e6)), true);
    return 0;
  } };
}

function give(bytes) {
  const at = player.exports.playerBuffer(bytes.length);
  new Uint8Array(player.exports.memory.buffer, at, bytes.length).set(bytes);
  return bytes.length;
}
function take(size) {
  return fromUtf8.decode(new Uint8Array(player.exports.memory.buffer, player.exports.playerBuffer(0), size).slice());
}

function giveTexts() {
  for (const [number, words] of Object.entries(texts.run))
    player.exports.playerText(Number(number), give(utf8.encode(words[texts.languages.indexOf(language)])));
}

// The display at a whole number of the screen's own dots a dot.
function layOut() {
  const ratio = window.devicePixelRatio || 1, room = Math.min(document.documentElement.clientWidth - 24, 640);
  const beside = matchMedia('(min-width: 52rem)').matches;
  const high = beside ? window.innerHeight - 130 : window.innerHeight - 190;
  const fits = Math.min(room / screenWide, high / 255) * ratio;
  const zoom = Math.max(Math.floor(fits), Math.min(Math.floor(room / screenWide * ratio), Math.ceil(1.9 * ratio)), 1) / ratio;
  const canvas = element('display');
  canvas.style.width = screenWide * zoom + 'px';
  canvas.style.height = screenHigh * zoom + 'px';
  const keypad = element('keypad');
  keypad.style.width = screenWide * zoom + 'px';
  keypad.style.height = 194 * zoom + 'px';
  for (const part of keypad.children) {
    const [x, y, wide, high, letters] = part.place;
    Object.assign(part.style, { left: x * zoom + 'px', top: (y - screenHigh) * zoom + 'px', width: wide * zoom + 'px',
      height: high * zoom + 'px', fontSize: letters * zoom + 'px' });
  }
}

function addLegend(name, text, x, y, wide, letters) {
  if (!text) return;
  const legend = document.createElement('span');
  legend.className = 'legend ' + name;
  legend.textContent = text;
  legend.place = [x, y, wide, letters + 1, letters];
  element('keypad').append(legend);
}

function buildKeypad() {
  for (const [code, shape, x, y, wide, high, legend, shift, alpha] of JSON.parse(take(player.exports.playerKeypad()))) {
    const key = document.createElement('button');
    key.className = 'key' + (shape === shapePad ? ' pad' : shape === shapeStop ? ' stop' : arrows.includes(shape) ? ' arrow' : '');
    key.textContent = legend;
    key.dataset.code = code;
    key.tabIndex = -1;
    key.setAttribute('aria-label', legend);
    key.place = [x, y, wide, high, legend.length > 3 ? 5 : arrows.includes(shape) ? 5.5 : 7];
    element('keypad').append(key);
    const letters = 3.8;
    addLegend('shift', shift, x + 1, y - letters - 0.7, wide, letters);
    if (alpha) addLegend('alpha', alpha, x + wide - 4, y - letters - 0.7, 6, letters);
  }
}

// One key at a time, as the player knows them; a short tap lasts long enough for a wait to see it.
let pressedAt = 0, pressedCode = 0, presses = 0;
function press(code) {
  if (!code) return;
  if (code === stopCode) { stop(); return; }
  pressedAt = performance.now();
  pressedCode = code;
  presses++;
  player.exports.playerKey(code);
  mark();
}
function release() {
  const mine = presses, rest = shortestPress - (performance.now() - pressedAt);
  const end = () => {
    if (mine !== presses) return;
    pressedCode = 0;
    player.exports.playerKey(0);
    mark();
  };
  rest > 0 ? setTimeout(end, rest) : end();
}
function mark() {
  for (const key of document.querySelectorAll('.key')) key.classList.toggle('down', Number(key.dataset.code) === pressedCode);
}

function codeOfKeyboard(event) {
  if (event.ctrlKey || event.altKey || event.metaKey) return 0;
  const place = event => {
    const name = event.key === 'Delete' ? 'Backspace' : event.key;
    if (namedKeys.includes(name)) return namedKeys.indexOf(name);
    if (/^[a-z]$/i.test(name)) return letterPlace + name.toLowerCase().charCodeAt(0) - 97;
    if (/^[0-9]$/.test(name)) return digitPlace + Number(name);
    if (/^F[1-6]$/.test(name)) return functionPlace + Number(name[1]) - 1;
    if (signs.includes(name)) return signPlace + signs.indexOf(name);
    const letter = /^Key([A-Z])$/.exec(event.code);  // by its place where the layout has no Latin letter
    return letter ? letterPlace + letter[1].charCodeAt(0) - 65 : -1;
  };
  return player.exports.playerKeyCodeOf(place(event));
}

function draw() {
  if (player.exports.playerTakeDisplay()) {
    const dots = new Uint8ClampedArray(player.exports.memory.buffer, player.exports.playerPixels(), screenWide * screenHigh * 4);
    element('display').getContext('2d').putImageData(new ImageData(dots.slice(), screenWide, screenHigh), 0, 0);
    element('display').setAttribute('aria-label', say('display') + '\n' + take(player.exports.playerDisplayText()));
  }
  requestAnimationFrame(draw);
}

function tell(name, more = '') {
  told = name;
  toldMore = more;
  element('told').textContent = say(name) + (more ? '\n' + more : '');
}

async function run() {
  wanted = true;
  if (running) { player.exports.playerStop(); return; }
  running = true;
  try {
    while (wanted) {
      wanted = false;
      tell('running');
      const end = await player.call('playerRun');
      tell(endNames[end] || 'ended', take(player.exports.playerBoxes()));
    }
  } catch (fault) {
    console.error(fault);
    tell('failed');
    return;  // the machine is in no state to go on
  }
  running = false;
}
function stop() {
  wanted = false;
  player.exports.playerStop();
}

function showProgram() {
  const lines = JSON.parse(take(player.exports.playerItemLines(Number(element('which').value))));
  const pre = element('lines');
  pre.textContent = '';
  for (const line of lines) {
    for (const [runClass, text] of line) {
      const part = document.createElement('span');
      part.className = 'c' + runClass;
      part.textContent = text;
      pre.append(part);
    }
    pre.append('\n');
  }
}

function listPrograms() {
  for (let i = 0; i < player.exports.playerItemCount(); i++) {
    if (take(player.exports.playerItemLines(i)) === '[]') continue;
    const option = document.createElement('option');
    option.value = i;
    option.textContent = take(player.exports.playerItemName(i));
    element('which').append(option);
  }
  showProgram();
}

async function copyProgram() {
  try {
    await navigator.clipboard.writeText(element('lines').textContent);
    element('copied').textContent = say('copied');
  } catch {
    getSelection().selectAllChildren(element('lines'));
    element('copied').textContent = say(document.execCommand && document.execCommand('copy') ? 'copied' : 'copyFailed');
  }
}

function setLanguage(name) {
  language = name;
  document.documentElement.lang = texts.codes[texts.languages.indexOf(name)];
  for (const part of document.querySelectorAll('[data-text]')) part.textContent = say(part.dataset.text);
  element('display').setAttribute('aria-label', say('display'));
  element('keypad').setAttribute('aria-label', say('keypad'));
  element('copied').textContent = '';
  if (player) giveTexts();
  tell(told, toldMore);
}

function showTab(name) {
  for (const tab of ['play', 'text']) {
    element(tab).hidden = tab !== name;
    element('tab-' + tab).setAttribute('aria-selected', tab === name);
  }
  if (name === 'play') element('display').focus({ preventScroll: true });
}

function listen() {
  const keypad = element('keypad');
  keypad.addEventListener('pointerdown', event => {
    const key = event.target.closest('.key');
    if (!key) return;
    event.preventDefault();
    keypad.setPointerCapture(event.pointerId);
    press(Number(key.dataset.code));
  });
  for (const name of ['pointerup', 'pointercancel']) keypad.addEventListener(name, release);
  keypad.addEventListener('contextmenu', event => event.preventDefault());
  const ofPage = event => /^(SELECT|BUTTON|INPUT)$/.test(event.target.tagName) && !event.target.classList.contains('key') || element('play').hidden;
  addEventListener('keydown', event => {
    if (ofPage(event)) return;
    if (event.key === 'Escape') { stop(); return; }
    if (event.key === 'Tab' && !running) return;
    const code = codeOfKeyboard(event);
    if (!code) return;
    event.preventDefault();
    if (!event.repeat) press(code); else player.exports.playerKey(code);
  });
  addEventListener('keyup', event => { if (!ofPage(event) && !event.repeat) release(); });
  addEventListener('blur', release);
  addEventListener('resize', layOut);
  element('restart').addEventListener('click', () => { run(); element('display').focus({ preventScroll: true }); });
  element('stop').addEventListener('click', stop);
  element('speed').addEventListener('change', event => player.exports.playerFullSpeed(event.target.value === '1'));
  element('which').addEventListener('change', showProgram);
  element('copy').addEventListener('click', copyProgram);
  for (const tab of ['play', 'text']) element('tab-' + tab).addEventListener('click', () => showTab(tab));
}

async function begin() {
  element('title').textContent = document.title;
  for (const name of texts.languages) {
    const option = document.createElement('option');
    option.value = name;
    option.textContent = texts.names[texts.languages.indexOf(name)];
    element('language').append(option);
  }
  const preferred = (navigator.languages || [navigator.language]).map(code => texts.codes.indexOf(code.slice(0, 2))).find(at => at >= 0);
  setLanguage(texts.languages[preferred ?? 0]);
  element('language').value = language;
  element('language').addEventListener('change', event => setLanguage(event.target.value));
  element('told').textContent = '';
  try {
    player = await loadPlayer();
    if (!player.exports.playerBegin()) throw new Error('data');
  } catch (fault) {
    console.error(fault);
    tell('tooOld');
    return;
  }
  giveTexts();
  let items = null;
  try { items = bytesOf('items'); } catch { /* edited by hand */ }
  if (!items || !player.exports.playerLoad(give(items))) { tell('damaged'); return; }
  buildKeypad();
  layOut();
  listPrograms();
  listen();
  draw();
  element('display').focus({ preventScroll: true });
  window.numalinkPlayer = { player, give, take, stop };  // for tests
  run();
}
begin();
})();
