// The headset page: shows the newest frame, and tells the companion where the head looks.
import { Figures } from '/figures.js';
import { Head } from '/head.js';
import { Link } from '/link.js';

const headerBytes = 16;
const silenceMs = 2000;

const element = (id) => document.getElementById(id);
const canvas = element('picture');
const context = canvas.getContext('2d', { alpha: false });
const figures = new Figures();
const state = { open: false, driver: false, leads: false, frameAt: -Infinity };
let eyes = matchMedia('(pointer: coarse)').matches ? 2 : 1;

// The picture's eyes are squares, whatever the shape of the frame's halves: each shows 90° by 90°.
const eyeWidth = () => Math.min(canvas.clientWidth / eyes, canvas.clientHeight) || 1;
const head = new Head(canvas, eyeWidth);

const link = new Link('/headset', {
  opened() {
    state.open = true;
    figures.startOver();
    display.tell();
  },
  closed() {
    Object.assign(state, { open: false, driver: false, frameAt: -Infinity });
    say();
  },
  text(message) {
    if (message.type === 'status') Object.assign(state, { driver: message.driver, leads: message.leads });
    say();
  },
  // The companion sends the next frame when it hears of this one.
  frame(buffer) {
    link.send({ type: 'received', frame: new DataView(buffer).getUint32(0, true) });
    newest.offer(buffer);
  },
});

// A frame that is not shown before a newer one comes is never shown.
const newest = {
  waiting: null,
  busy: false,
  async offer(buffer) {
    this.waiting = buffer;
    if (this.busy) return;
    this.busy = true;
    while (this.waiting !== null) {
      const next = this.waiting;
      this.waiting = null;
      await show(next);
    }
    this.busy = false;
  },
};

async function show(buffer) {
  const header = new DataView(buffer);
  let picture;
  try {
    picture = await createImageBitmap(new Blob([new Uint8Array(buffer, headerBytes)], { type: 'image/jpeg' }));
  } catch {
    return;  // no picture: it counts as dropped
  }
  draw(picture);
  const frame = {
    number: header.getUint32(0, true),
    poseNumber: header.getUint32(4, true),
    poseToFrame: header.getFloat32(8, true),
    encoding: header.getFloat32(12, true),
    bytes: buffer.byteLength,
  };
  const age = figures.frameShown(frame);
  canvas.dispatchEvent(new CustomEvent('shown', { detail: { ...frame, age } }));  // for those who measure
  state.frameAt = performance.now();
  say();
}

function draw(picture) {
  const side = picture.height;
  if (canvas.width !== side * eyes || canvas.height !== side) Object.assign(canvas, { width: side * eyes, height: side });
  for (let eye = 0; eye < eyes; eye += 1) {
    context.drawImage(picture, (eye * picture.width) / 2, 0, picture.width / 2, side, eye * side, 0, side, side);
  }
  picture.close();
}

function words() {
  if (!state.open) return 'The companion is away. Start Ombrel.exe on the computer; this page goes on by itself.';
  if (!state.driver) return 'The driver is away. Start the runtime with the driver; this page goes on by itself.';
  if (performance.now() - state.frameAt > silenceMs) return 'The driver is here, but the runtime shows no frames.';
  return '';
}

function say() {
  const text = words();
  if (element('words').textContent !== text) element('words').textContent = text;
  canvas.hidden = text !== '';
}

// The rate of the display, by the intervals of its frames: a quarter of them is shorter than the one that counts, so that
// a busy moment of the page does not make a slow display.
const display = {
  rate: 0,
  intervals: [],
  see(interval) {
    this.intervals.push(interval);
    if (this.intervals.length < 60) return;
    const typical = this.intervals.sort((a, b) => a - b)[15];
    this.intervals = [];
    const rate = Math.max(10, Math.min(240, Math.round(1000 / typical)));
    if (Math.abs(rate - this.rate) <= 0.05 * rate) return;
    this.rate = rate;
    this.tell();
  },
  tell() {
    if (this.rate > 0) link.send({ type: 'rate', framesPerSecond: this.rate });
  },
};

let poses = 0;
let before = performance.now();
function eachFrame(now) {
  requestAnimationFrame(eachFrame);
  const interval = now - before;
  before = now;
  if (interval <= 0) return;
  display.see(interval);
  head.passTime(Math.min(interval, 100) / 1000);
  poses += 1;
  link.send({ type: 'head', number: poses, orientation: head.orientation() });
  figures.poseSent(poses);
}
requestAnimationFrame(eachFrame);

setInterval(() => {
  const text = figures.take(state.leads);
  if (text !== null) element('figures-text').textContent = text;
  say();
}, 250);

function recenter() {
  head.level();
  link.send({ type: 'recenter' });
}

function showFigures(on) {
  element('figures').setAttribute('aria-pressed', on);
  element('figures-text').hidden = !on;
}

function showEyes(count) {
  eyes = count;
  element('eyes').textContent = eyes === 2 ? 'One eye' : 'Both eyes';
}

async function goFullScreen() {
  try {
    if (document.fullscreenElement) return await document.exitFullscreen();
    await document.documentElement.requestFullscreen({ navigationUI: 'hide' });
    await screen.orientation.lock('landscape');
  } catch {
    // A display that does not turn, or a browser without: the page does without, too.
  }
}

async function stayAwake() {
  try {
    if (!document.hidden) await navigator.wakeLock?.request('screen');
  } catch {
    // A battery that is low, for one. The display then sleeps as it would.
  }
}

const actions = {
  f: goFullScreen,
  e: () => showEyes(3 - eyes),
  r: recenter,
  home: recenter,
  i: () => showFigures(element('figures').getAttribute('aria-pressed') !== 'true'),
};
addEventListener('keydown', (event) => {
  if (!event.repeat && !event.ctrlKey && !event.altKey && !event.metaKey) actions[event.key.toLowerCase()]?.();
});
element('full-screen').onclick = actions.f;
element('eyes').onclick = actions.e;
element('recenter').onclick = recenter;
element('figures').onclick = actions.i;
canvas.ondblclick = recenter;
document.addEventListener('visibilitychange', stayAwake);
showEyes(eyes);
stayAwake();
