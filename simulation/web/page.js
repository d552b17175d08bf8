// A life is its script. Each thing that is done is a line more in it, and the whole life is played again, which takes
// milliseconds: what was seen before comes out the same. The page shows what has happened until its own time.
'use strict';

const byId = (id) => document.getElementById(id);
const firstScript = 'config KnockOutTimer 40\nclients dcm, navigation, radio, dem\n';
const ahead = 60000;  // ms that are played beyond what is shown
const manners = ['succeeds', 'after 1s', 'after 30s', 'silent', 'fails', 'invalid', 'crashes', 'twice'];

const states = {
  'Starting up': [95, 45], 'Running': [300, 45], 'NM Controlled': [505, 45],
  'Resuming': [95, 165], 'Preparing': [300, 165], 'Post Run': [505, 165],
  'PreparedSD': [300, 285], 'Shutting down': [505, 285],
};
const ways = [
  ['Starting up', 'Running', 'M175 45H220'], ['Running', 'NM Controlled', 'M380 37H425'],
  ['NM Controlled', 'Running', 'M425 53H380'], ['Running', 'Preparing', 'M300 69V141'],
  ['NM Controlled', 'Post Run', 'M497 69V141'], ['Post Run', 'NM Controlled', 'M513 141V69'],
  ['NM Controlled', 'Preparing', 'M455 69 345 141'], ['Post Run', 'Running', 'M455 141 345 69'],
  ['Post Run', 'Preparing', 'M425 165H380'], ['Preparing', 'PreparedSD', 'M300 189V261'],
  ['Preparing', 'Resuming', 'M220 165H175'], ['PreparedSD', 'Resuming', 'M255 261 140 189'],
  ['Resuming', 'Running', 'M140 141 255 69'], ['PreparedSD', 'Shutting down', 'M380 285H425'],
  ['Post Run', 'Shutting down', 'M505 189V261'], ['NM Controlled', 'Shutting down', 'M585 55Q603 55 603 75V257Q603 277 585 277'],
  ['Running', 'Shutting down', 'M300 21V12Q300 4 308 4H609Q617 4 617 12V283Q617 291 609 291H585'],
  ['Resuming', 'Shutting down', 'M95 189C95 345 330 350 440 309'],
];

let machine;
let configuration = '';
let now = 0;      // ms of virtual time
let played = 0;   // ms until which the timeline goes
let timeline = [];
let expectations = [];
let shown = [];   // what the list has
let isRunning = false;
let lastTick = 0;
let isToEnd = false;
let isTrace = false;  // the timeline is that of a trace, and not of the script

const seconds = (ms) => (ms / 1000).toFixed(3) + ' s';
const isOver = () => timeline.length > 0 && timeline[timeline.length - 1].kind === 'end';
const lastAt = () => timeline.length ? timeline[timeline.length - 1].at : 0;

function element(tag, attributes, text) {
  const made = document.createElement(tag);
  Object.assign(made, attributes);
  if (text !== undefined) made.textContent = text;
  return made;
}

function tell(trouble) {
  byId('trouble').hidden = !trouble;
  byId('trouble').textContent = trouble || '';
}

// Plays until a time, or to the script's end for 0. False, and the reason is shown, where that can't be.
function play(until) {
  let answer;
  try {
    answer = JSON.parse(machine.ccall('play_life', 'string', ['string', 'string', 'number', 'number'],
      [byId('script').value, configuration, until, byId('log').checked ? 1 : 0]));
  } catch (error) {
    answer = { error: 'the simulated machine failed: ' + error };
  }
  tell(answer.error);
  if (answer.error) return false;
  isToEnd = until === 0;
  timeline = answer.timeline.filter((entry) => entry.kind !== 'end' || entry.what !== 'the end of the look');
  for (const entry of timeline) entry.at = entry.at_ns / 1e6;
  const end = answer.timeline[answer.timeline.length - 1];
  played = until === 0 ? Math.ceil(end.at_ns / 1e6) : until;
  expectations = answer.expectations;
  return true;
}

function showTimeline() {
  const list = byId('timeline');
  const due = timeline.filter((entry) => entry.at <= now);
  let same = 0;
  while (same < due.length && same < shown.length && due[same].at === shown[same].at && due[same].text === shown[same].text) ++same;
  if (same === due.length && same === shown.length) return;
  while (list.childElementCount > same) list.lastElementChild.remove();
  for (const entry of due.slice(same)) {
    const row = element('li', { className: entry.kind.replace(' ', '-') });
    row.append(element('time', {}, seconds(entry.at)), element('span', {}, entry.text.trim()));
    list.append(row);
  }
  shown = due;
  list.scrollTop = list.scrollHeight;
}

function showState() {
  const passed = shown.filter((entry) => entry.kind === 'state');
  const current = passed[passed.length - 1];
  const before = passed[passed.length - 2];
  const end = shown.find((entry) => entry.kind === 'end');
  const name = current ? current.who : '…';
  if (byId('state').textContent !== name) byId('state').textContent = name;
  byId('cause').textContent = end ? end.what : current ? current.what : '';
  for (const box of document.querySelectorAll('#diagram g')) box.classList.toggle('lit', box.dataset.state === name && !end);
  for (const way of document.querySelectorAll('#diagram path[data-from]')) {
    way.classList.toggle('taken', !!before && way.dataset.from === before.who && way.dataset.to === name);
  }
}

// A client's row says what the script last said of it.
function showClients() {
  const rows = byId('client-rows');
  const names = new Map();
  const noted = (name) => name === 'dcm' || name === 'dem' ? 'diag::' + name : name;
  for (const entry of shown) {
    if (entry.kind !== 'client') continue;
    if (entry.what.startsWith('connected')) names.set(noted(entry.who), true);
    if (/^(disconnected|crashed|was dropped)/.test(entry.what)) names.set(noted(entry.who), false);
  }
  const answers = new Map();
  for (const line of byId('script').value.matchAll(/^\s*clients (.*)$/gm)) {
    for (const [, name, manner] of line[1].matchAll(/([^\s,]+)([^,#]*)/g)) answers.set(noted(name), manner.replace(/ in .*/, ''));
  }
  for (const entry of shown) {
    const words = entry.kind === 'neighbour' && /^\s*(?:client )?(\S+) ((?:after|silent|fails|invalid|crashes|succeeds|twice).*)/.exec(entry.text);
    if (words) answers.set(noted(words[1]), words[2]);
  }
  for (const row of [...rows.children]) if (!names.has(row.dataset.client)) row.remove();
  for (const [name, isThere] of names) {
    const row = [...rows.children].find((one) => one.dataset.client === name) || clientRow(rows, name);
    const answer = (answers.get(name) || '').trim() || 'succeeds';
    const choice = row.querySelector('select');
    if (![...choice.options].some((one) => one.value === answer)) choice.append(element('option', { value: answer }, answer));
    choice.value = answer;
    row.classList.toggle('gone', !isThere);
    row.lastElementChild.textContent = isThere ? 'Disconnect' : 'Connect';
  }
}

function clientRow(rows, name) {
  const row = element('div', { className: 'client' });
  row.dataset.client = name;
  const choice = element('select', {});
  choice.setAttribute('aria-label', name + ' answers');
  for (const manner of manners) choice.append(element('option', { value: manner }, manner));
  choice.onchange = () => happen(`client ${name} ${choice.value}`);
  const goes = element('button', { type: 'button' }, 'Disconnect');
  goes.setAttribute('aria-label', name + ': connect or disconnect');
  goes.onclick = () => happen(`client ${name} ${row.classList.contains('gone') ? 'connects' : 'disconnects'}`);
  row.append(element('span', {}, name), choice, goes);
  rows.append(row);
  return row;
}

function showExpectations() {
  const list = byId('expectations');
  list.replaceChildren();
  for (const one of isToEnd && now >= lastAt() ? expectations : []) {
    list.append(element('li', { className: one.kept ? 'kept' : 'missed' }, `line ${one.line}: ${one.text} (${one.found})`));
  }
}

function show() {
  byId('clock').textContent = seconds(now);
  showTimeline();
  showState();
  showClients();
  showExpectations();
  byId('run').textContent = isRunning ? 'Stop' : 'Run';
  byId('run').setAttribute('aria-pressed', String(isRunning));
}

function go(to) {
  now = Math.max(0, Math.round(to));
  if (now > played && !isOver() && !isTrace) play(now + ahead);
  if (isOver() && now >= lastAt()) {
    now = Math.ceil(lastAt());
    isRunning = false;
  }
  show();
}

function playAgain() {
  leaveTrace();
  const isGood = play(now + ahead);
  if (isGood) show();
  return isGood;
}

// A line more, a millisecond after what is shown: nothing that was seen changes.
function happen(what) {
  leaveTrace();
  const script = byId('script');
  const before = script.value;
  const at = now + 1;
  script.value = before.replace(/\n?$/, before ? '\n' : '') + `at ${(at / 1000).toFixed(3)}s ${what}\n`;
  now = at;
  byId('life').value = '';
  if (!playAgain()) {
    script.value = before;
    now = at - 1;
    return;
  }
  script.scrollTop = script.scrollHeight;
  // What follows at once is seen at once.
  if (!isRunning) go(now + 1);
}

function tick(time) {
  if (isRunning) {
    go(now + Math.min(time - lastTick, 250) * Number(byId('speed').value));
  }
  lastTick = time;
  requestAnimationFrame(tick);
}

function begin(script) {
  byId('script').value = script;
  now = 0;
  isRunning = false;
  isTrace = false;
  if (!play(ahead)) timeline = [];
  show();
}

// What is done next goes into the script's own life.
function leaveTrace() {
  if (!isTrace) return;
  isTrace = false;
  now = 0;
}

// The lives that `ap_statectl explain --json` tells, one after the other; the clock of a machine that was started again begins anew.
function entriesOfTrace(lives) {
  const entries = [];
  const add = (at, kind, who, what) => {
    if (!Number.isFinite(at)) throw new Error('a time is missing');
    entries.push({ at, kind, who, what, text: `${who}: ${what}` });
  };
  let from = 0;
  let over = -Infinity;
  for (const life of lives) {
    if (over === -Infinity) from = life.begin;
    else if (life.begin < over) from -= over - life.begin;
    over = life.end;
    const at = (time) => (time - from) * 1000;
    add(at(life.begin), 'life', `life ${life.ecu}`, `process ${life.process}`);
    for (const one of life.states) add(at(one.begin), 'state', String(one.state), String(one.cause));
    add(at(life.end), life === lives[lives.length - 1] ? 'end' : 'life', 'end', String(life.ending));
  }
  return entries;
}

function showTrace(lives) {
  let entries;
  try {
    entries = entriesOfTrace(lives);
    if (entries.length === 0) throw new Error('it has no life');
  } catch (error) {
    tell('the trace can\'t be shown: ' + error.message);
    return;
  }
  tell('');
  timeline = entries;
  expectations = [];
  isTrace = true;
  isRunning = false;
  byId('life').value = '';
  played = Math.ceil(lastAt());
  go(played);
}

function livesOf(text) {
  try {
    return JSON.parse(text).lives;
  } catch (error) {
    return undefined;  // no JSON: said by whoever takes it for a configuration
  }
}

async function take(file) {
  const text = await file.text();
  if (text.startsWith('DLT\u0001')) {
    tell('a DLT file: what is shown here is the output of ap_statectl explain --json');
  } else if (Array.isArray(livesOf(text))) {
    showTrace(livesOf(text));
  } else if (/^\s*\{/.test(text)) {
    const before = configuration;
    configuration = text;
    if (play(now + ahead)) {
      byId('configured').textContent = file.name;
      show();
    } else {
      configuration = before;
    }
  } else {
    byId('life').value = '';
    begin(text);
  }
}

function drawDiagram() {
  const svg = byId('diagram');
  const draw = (tag, attributes, parent) => {
    const made = document.createElementNS('http://www.w3.org/2000/svg', tag);
    for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
    parent.append(made);
    return made;
  };
  for (const [from, to, d] of ways) draw('path', { d, 'data-from': from, 'data-to': to, 'marker-end': 'url(#tip)' }, svg);
  for (const [name, [x, y]] of Object.entries(states)) {
    const box = draw('g', { 'data-state': name }, svg);
    draw('rect', { x: x - 80, y: y - 24, width: 160, height: 48, rx: 9 }, box);
    draw('text', { x, y: y + 6 }, box).textContent = name;
  }
}

function listen() {
  for (const button of document.querySelectorAll('[data-event]')) button.onclick = () => happen(button.dataset.event);
  for (const button of document.querySelectorAll('[data-application]')) {
    button.onclick = () => happen(`application ${byId('instance').value} ${button.dataset.application.replace('BITS', byId('bits').value)}`);
  }
  for (const button of document.querySelectorAll('[data-jump]')) button.onclick = () => go(now + Number(button.dataset.jump));
  byId('run').onclick = () => { isRunning = !isRunning && !(isOver() && now >= lastAt()); show(); };
  byId('next').onclick = () => {
    if (!isTrace && !timeline.some((entry) => entry.at > now)) play(now + 10 * ahead);
    const next = timeline.find((entry) => entry.at > now);
    if (next) go(Math.ceil(next.at)); else go(played);
  };
  byId('end').onclick = () => { if (isTrace || play(0)) { now = played; isRunning = false; show(); } };
  byId('goto').onsubmit = (event) => {
    event.preventDefault();
    const to = Number(byId('when').value.replace(',', '.'));
    if (Number.isFinite(to) && to >= 0 && to <= 86400) go(to * 1000);
  };
  byId('come').onsubmit = (event) => {
    event.preventDefault();
    happen(`client ${byId('name').value} connects`);
    byId('name').value = '';
  };
  byId('log').onchange = () => { if (!isTrace) playAgain(); };
  byId('script').onchange = playAgain;
  byId('again').onclick = () => { byId('life').value = ''; begin(firstScript); };
  byId('life').onchange = () => {
    const life = document.querySelector(`script[data-life="${byId('life').value}"]`);
    begin(life ? life.textContent.trimStart() : firstScript);
  };
  byId('save').onclick = () => {
    const link = element('a', { download: 'life.whatif', href: URL.createObjectURL(new Blob([byId('script').value], { type: 'text/plain' })) });
    link.click();
    URL.revokeObjectURL(link.href);
  };
  for (const id of ['load', 'configuration']) {
    byId(id).onchange = () => { if (byId(id).files[0]) take(byId(id).files[0]); byId(id).value = ''; };
  }
  byId('built-in').onclick = () => { configuration = ''; byId('configured').textContent = 'the built-in one'; playAgain(); };
  document.ondragover = (event) => { event.preventDefault(); document.body.classList.add('dropping'); };
  document.ondragleave = () => document.body.classList.remove('dropping');
  document.ondrop = (event) => {
    event.preventDefault();
    document.body.classList.remove('dropping');
    if (event.dataTransfer.files[0]) take(event.dataTransfer.files[0]);
  };
  for (const life of document.querySelectorAll('script[data-life]')) {
    byId('life').append(element('option', { value: life.dataset.life }, life.dataset.life));
  }
}

drawDiagram();
createMachine().then((made) => {
  machine = made;
  listen();
  begin(firstScript);
  requestAnimationFrame(tick);
  document.body.dataset.ready = 'yes';
}, (error) => tell('the simulated machine does not start here: ' + error));
