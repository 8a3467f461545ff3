// player_test.mjs NUMALINK-CLI: the player in a browser against the desktop's emulator, dot by dot, and the page around
// it: keys, touch, sizes, languages, a program without an end. Prints what it found; exit status 1 with any fault.
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { startBrowser, openPage } from './browser.mjs';

const cli = process.argv[2], root = new URL('../..', import.meta.url).pathname;
const work = mkdtempSync(join(tmpdir(), 'numalink-web-'));
const runFilesWanted = 60, sampleKeys = Array(40).fill(31), sampleStatements = 20000;
const programKind = 15, dotsWide = 128, screenNames = { 1: 'graph', 2: 'textScreen', 3: 'matrixScreen' };
let faults = 0, checks = 0;
const expect = (good, what) => { checks++; if (!good) { faults++; console.error(`FAULT: ${what}`); } };

const env = { ...process.env, NUMALINK_HOME: join(work, 'home') };
function run(...words) {  // what goes to standard output; a box gives status 1
  try { return execFileSync(cli, words, { env, stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 1 << 26 }).toString(); }
  catch (fault) { if (fault.status === 1) return fault.stdout.toString(); throw fault; }
}

// The bundle of one program, as a page would hold it.
const sums = Array.from({ length: 256 }, (_, n) => { for (let k = 0; k < 8; k++) n = n & 1 ? n >>> 1 ^ 0xEDB88320 : n >>> 1; return n >>> 0; });
function bundleOf(tokens) {
  const bytes = [...Buffer.from('NLB1')];
  const number = n => bytes.push(n & 255, n >> 8 & 255, n >> 16 & 255, n >>> 24);
  const part = data => { number(data.length); bytes.push(...data); };
  number(1); number(programKind); part(Buffer.from('EVAL')); part([]); part([0x3A, ...tokens, 0xFF, 0]);
  let sum = ~0;
  for (const byte of bytes) sum = sum >>> 8 ^ sums[(sum ^ byte) & 255];
  number(~sum >>> 0);
  return bytes;
}

// Rows of stretches, as the desktop tells a screen, into dots.
const dotsOf = rows => rows.flatMap(([times, runs]) => Array(times).fill(runs.flatMap(([count, color]) => Array(count).fill(color))).flat());

const inPage = `(async (bundle, keys, getKeys, statements) => {
  const { player, give } = window.numalinkPlayer, e = player.exports, text = t => new TextEncoder().encode(t);
  e.playerFullSpeed(true);
  if (bundle && !e.playerLoad(give(Uint8Array.from(bundle)))) return null;
  const end = await player.call('playerScript', give(text(keys.map(k => k + ',').join('') + ';' + getKeys.map(k => k + ',').join(''))), statements);
  const dots = () => Array.from(new Uint32Array(e.memory.buffer, e.playerPixels(), 128 * 64), dot => dot & 0xFFFFFF);
  e.playerTakeDisplay();
  const screens = { display: dots() };
  for (const mode of [1, 2, 3]) { e.playerTakeScreen(mode); screens[mode] = dots(); }
  return { end, screens, statements: e.playerStatements() };
})`;
const callInPage = (page, ...values) => page.value(`${inPage}(${values.map(value => JSON.stringify(value)).join(',')})`);

function compare(name, desktop, player) {
  const same = (a, b) => a.length === b.length && a.every((dot, i) => dot === b[i]);
  if (!player) return expect(false, `${name}: not loaded`);
  expect(player.statements === desktop.statements, `${name}: ${player.statements} statements, ${desktop.statements} on the desktop`);
  for (const [place, key] of [['display', 'display'], ...Object.entries(screenNames)]) {
    // The screen of matrices keeps what an earlier run has left, until one is shown.
    if (key !== 'matrixScreen' || desktop.screenMode === 3) expect(same(player.screens[place], dotsOf(desktop[key])), `${name}: ${key} differs`);
  }
}

// The sections of a run file, or null for one that needs more than a program and keys.
function readRunFile(name) {
  const sections = { lines: [], keys: [], getkey: [], statements: 0 };
  let programs = 0, inProgram = false;
  for (const line of readFileSync(join(root, 'tests/runs', name), 'utf8').split('\n')) {
    if (!line.trim() || line.startsWith('#')) continue;
    const [word, ...rest] = line.split(' ');
    const codes = () => rest.map(code => code === 'EXE' ? 31 : Number(code));
    if (/^(set|program|keys|getkey|statements|ended|text|graph|matrix|shown|dots|display|vars|list|mat|errors|boxes|switches|row|mode)$/.test(word)) inProgram = word === 'program';
    else if (inProgram) { sections.lines.push(line); continue; }
    if (word === 'program') programs++;
    if (word === 'set' || word === 'boxes') return null;
    if (word === 'keys' || word === 'getkey') sections[word] = codes();
    if (word === 'statements') sections.statements = Number(rest[0]);
  }
  return programs === 1 && sections.lines.length ? sections : null;
}

async function compareRunFiles(page) {
  let compared = 0;
  const names = readdirSync(join(root, 'tests/runs')).filter(name => name.endsWith('.run'));
  const every = Math.floor(names.length / runFilesWanted / 1.3);  // spread over all of them
  for (let i = 0; i < names.length && compared < runFilesWanted; i += every) {
    const sections = readRunFile(names[i]);
    if (!sections) continue;
    const hex = run('tokens', 'encode', ...sections.lines).trim();
    const options = [];
    if (sections.keys.length) options.push('--keys', sections.keys.join(','));
    if (sections.getkey.length) options.push('--getkey', sections.getkey.join(','));
    if (sections.statements) options.push('--statements', String(sections.statements));
    const desktop = JSON.parse(run('eval', hex, '--json', '--set', 'FillListsMatrices=1', ...options));
    compare(names[i], desktop, await callInPage(page, bundleOf(Buffer.from(hex, 'hex')), sections.keys, sections.getkey, sections.statements));
    compared++;
  }
  console.log(`${compared} run files compared`);
  expect(compared >= 40, 'fewer than 40 run files');
}

async function compareSamples(browser, library) {
  const names = run('list', library).split('\n').slice(1).map(line => line.trim().split(/\s+/)).filter(row => row[2] === '15');
  for (const [id, , , , , ...name] of names.slice(0, 16)) {
    const path = join(work, `sample-${id}.html`);
    run('share', library, id, '-o', path);
    const page = await openPage(browser, `file://${path}`);
    expect(await page.until('!!window.numalinkPlayer'), `${name} doesn't come up`);
    await stopped(page);
    const desktop = JSON.parse(run('run', library, id, '--json', '--statements', String(sampleStatements), '--keys', sampleKeys.join(',')));
    compare(name.join(' '), desktop, await callInPage(page, null, sampleKeys, [], sampleStatements));
    await page.close();
  }
  console.log(`${Math.min(names.length, 16)} samples compared`);
  expect(names.length >= 12, 'fewer than 12 samples');
}

async function stopped(page) {
  const from = Date.now();
  await page.value('document.getElementById("stop").click()');
  expect(await page.until('/stopped/.test(document.getElementById("told").textContent)', 3000), 'a stop is not told');
  return Date.now() - from;
}

// A program that shows the code of each key for as long as it is held.
function shareText(library, name, text, title) {
  const file = join(work, 'program.txt');
  writeFileSync(file, text);
  const made = run('list', library).split('\n').map(line => line.trim().split(/\s+/)).find(row => row[5] === 'NIM');
  run('write', library, made[0], file);
  const path = join(work, `${name}.html`);
  run('share', library, made[0], '-o', path, '--title', title, '--replace');
  return `file://${path}`;
}

async function tryKeys(browser, url) {
  const page = await openPage(browser, url, { width: 390, height: 844, scale: 3, mobile: true });
  await page.until('!!window.numalinkPlayer');
  const shows = code => page.until(`(() => { const { player, take } = window.numalinkPlayer; return take(player.exports.playerDisplayText()).trim().endsWith('${code}'); })()`, 8000);
  for (const [key, code] of [['ArrowUp', 28], ['a', 76], ['7', 74], ['F6', 29], ['Backspace', 44]]) {
    await page.send('Input.dispatchKeyEvent', { type: 'keyDown', key });
    expect(await shows(code), `key ${key} doesn't give ${code}`);
    await page.send('Input.dispatchKeyEvent', { type: 'keyUp', key });
    expect(await shows(0), `key ${key} stays down`);
  }
  for (const code of [79, 54, 38]) {
    const place = await page.value(`(() => { const box = document.querySelector('.key[data-code="${code}"]').getBoundingClientRect(); return { x: box.x + box.width / 2, y: box.y + box.height / 2 }; })()`);
    const mouse = type => page.send('Input.dispatchMouseEvent', { type, ...place, button: 'left', clickCount: 1 });
    await mouse('mousePressed');
    expect(await shows(code), `the mouse on key ${code} doesn't reach it`);
    await mouse('mouseReleased');
    expect(await shows(0), `key ${code} stays down behind the mouse`);
    await page.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: [place] });
    expect(await shows(code), `a touch of key ${code} doesn't reach it`);
    await page.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
    expect(await shows(0), `key ${code} stays down behind a touch`);
  }
  await page.close();
}

async function tryPage(browser, url, title) {
  for (const size of [{ width: 320, height: 568, scale: 2 }, { width: 360, height: 640, scale: 3 }, { width: 412, height: 915, scale: 2.625 }, { width: 1280, height: 800, scale: 1 }]) {
    const page = await openPage(browser, url, { ...size, mobile: size.width < 1000, dark: true, language: 'de' });
    await page.until('!!window.numalinkPlayer');
    const seen = await page.value(`({ wide: document.documentElement.scrollWidth, dot: document.getElementById('display').getBoundingClientRect().width * devicePixelRatio / ${dotsWide},
      keys: [...document.querySelectorAll('.key')].filter(key => { const box = key.getBoundingClientRect(); return box.left >= 0 && box.right <= innerWidth; }).length,
      title: document.getElementById('title').textContent, tab: document.getElementById('tab-play').textContent })`);
    const where = `at ${size.width} by ${size.height}`;
    expect(seen.wide <= size.width, `${where} the page is ${seen.wide} wide`);
    expect(Math.abs(seen.dot - Math.round(seen.dot)) < 0.02 && seen.dot >= 1, `${where} a dot is ${seen.dot} dots of the screen`);
    expect(seen.keys === 50, `${where} ${seen.keys} keys can be reached`);
    expect(seen.title === title && seen.tab === 'Spielen', `${where} ${JSON.stringify(seen)}`);
    expect(page.requests.length === 1, `requests: ${page.requests.join(' ').slice(0, 300)}`);
    expect(page.complaints.length === 0, `complaints: ${page.complaints.join(' ').slice(0, 300)}`);
    await page.close();
  }
}

// A page stays alive beside a program that never ends, even within one statement, and stops it.
async function tryEndless(browser, library) {
  for (const text of ['Lbl 1\nGoto 1', 'Σ(X+1,X,1,9999999999)→A']) {
    const page = await openPage(browser, shareText(library, 'endless', text, 'Endless'));
    await page.until('!!window.numalinkPlayer');
    await page.value('document.getElementById("speed").value = "1"; document.getElementById("speed").dispatchEvent(new Event("change")); document.getElementById("restart").click()');
    await new Promise(done => setTimeout(done, 300));
    const from = Date.now();
    await page.value('new Promise(done => requestAnimationFrame(done)).then(() => 1)');
    const turn = Date.now() - from, stop = await stopped(page);
    console.log(`beside ${JSON.stringify(text)}: a turn after ${turn} ms, stopped after ${stop} ms`);
    expect(turn < 1000 && stop < 1500, 'the page hardly lives beside a program without an end');
    await page.close();
  }
}

async function tryDamaged(browser, url) {
  const path = join(work, 'damaged.html'), text = readFileSync(url.slice(7), 'utf8');
  writeFileSync(path, text.replace(/(id="items">.{40})./, '$1#'));
  const page = await openPage(browser, `file://${path}`);
  expect(await page.until('/damaged/.test(document.getElementById("told").textContent)'), 'a damaged page is not told');
  await page.close();
}

async function measure(page) {
  const hex = run('tokens', 'encode', '--typed', 'For 1->A To 1000000', 'A+1->B', 'Next').trim();
  const bundle = JSON.stringify(bundleOf(Buffer.from(hex, 'hex')));
  const rate = await page.value(`(async () => { await ${inPage}(${bundle}, [], [], 0); const from = performance.now(); const run = await ${inPage}(${bundle}, [], [], 0); return run.statements / (performance.now() - from) * 1000; })()`);
  console.log(`the player: ${(rate / 3e6).toFixed(1)} million passes of a loop a second`);
}

const browser = await startBrowser();
try {
  console.log(browser.version);
  const library = join(work, 'library');
  run('import', library, join(root, 'samples/games.cat'), '--into', 'Games');
  run('import', library, join(root, 'samples/plots.cas'), '--into', 'Plots');
  const title = 'Keys </title><script>alert(1)</script> & "more"';
  const url = shareText(library, 'keys', 'Lbl 1\nLocate 1,1,Getkey\nLocate 2,1,"  "\nGoto 1'.replace('Locate 2,1,"  "\n', 'If Getkey<10\nThen Locate 2,1," "\nIfEnd\n'), title);
  await tryKeys(browser, url);
  await tryPage(browser, url, title);
  await tryDamaged(browser, url);
  await tryEndless(browser, library);
  const page = await openPage(browser, url);
  await page.until('!!window.numalinkPlayer');
  await stopped(page);
  await compareRunFiles(page);
  await measure(page);
  await compareSamples(browser, library);
} finally {
  await browser.end();
  rmSync(work, { recursive: true, force: true });
}
console.log(`${checks} checks, ${faults} faults`);
process.exit(faults ? 1 : 0);
