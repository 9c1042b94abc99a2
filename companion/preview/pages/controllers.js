// The controllers page: two controllers' inputs, on the screen and on keys; pulses vibrate the device and light the page.
import { Link } from '/link.js';

const hands = [
  { id: 1, name: 'Left', keys: { trackpad: 'q', trigger: 'w', grip: 'a', menu: 's', system: 'd' } },
  { id: 2, name: 'Right', keys: { trackpad: 'p', trigger: 'o', grip: 'l', menu: 'k', system: 'j' } },
];
const shortestFlashMs = 150;

const words = document.getElementById('words');
const link = new Link('/hands', {
  opened() {
    hands.forEach(tell);
  },
  closed() {
    words.textContent = 'The companion is away. Start Ombrel.exe on the computer; this page goes on by itself.';
  },
  text(message) {
    if (message.type === 'status') words.textContent = describe(message);
    if (message.type === 'pulse') hands.filter(({ id }) => id === message.controller).forEach((hand) => pulse(hand, message));
  },
  frame() {},
});

function describe({ driver, leads }) {
  if (!driver) return 'The driver is away. Start the runtime with the driver; this page goes on by itself.';
  return leads ? 'Connected.' : 'Another page holds the controllers.';
}

function tell(hand) {
  const pull = hand.pressed.has('trigger') ? 1 : hand.pull;
  const pressed = new Set(hand.pressed);
  if (pull === 1) pressed.add('trigger');
  link.send({
    type: 'controller',
    id: hand.id,
    pressed: [...pressed],
    touched: hand.finger || pressed.has('trackpad') ? ['trackpad'] : [],
    trackpad: hand.finger ?? [0, 0],
    trigger: pull,
  });
}

function press(hand, input, on) {
  if (on === hand.pressed.has(input)) return;
  if (on) hand.pressed.add(input);
  else hand.pressed.delete(input);
  hand.field.querySelector(`button[data-input=${input}]`).setAttribute('aria-pressed', on);
  tell(hand);
}

function pulse(hand, { milliseconds }) {
  // Browsers refuse to vibrate, and say so in the console, before the page was touched.
  if (navigator.userActivation?.hasBeenActive) navigator.vibrate?.(Math.max(1, Math.round(milliseconds)));
  hand.field.querySelector('output').textContent = `Pulse of ${milliseconds.toFixed(0)} ms`;
  hand.field.classList.add('pulse');
  clearTimeout(hand.flash);
  hand.flash = setTimeout(() => hand.field.classList.remove('pulse'), Math.max(shortestFlashMs, milliseconds));
}

function watchButton(hand, button) {
  const input = button.dataset.input;
  button.setAttribute('aria-pressed', false);
  button.querySelector('kbd').textContent = hand.keys[input].toUpperCase();
  button.addEventListener('pointerdown', (event) => {
    button.setPointerCapture(event.pointerId);
    press(hand, input, true);
  });
  button.addEventListener('lostpointercapture', () => press(hand, input, false));
  button.addEventListener('keydown', ({ key }) => key === ' ' && press(hand, input, true));
  button.addEventListener('keyup', ({ key }) => key === ' ' && press(hand, input, false));
  button.addEventListener('contextmenu', (event) => event.preventDefault());
}

// A finger on the pad, -1 to 1, y upwards, within the circle.
function watchPad(hand, pad) {
  const finger = pad.querySelector('.finger');
  const move = (event) => {
    const box = pad.getBoundingClientRect();
    const x = ((event.clientX - box.left) / box.width) * 2 - 1;
    const y = 1 - ((event.clientY - box.top) / box.height) * 2;
    const beyond = Math.max(1, Math.hypot(x, y));
    hand.finger = [x / beyond, y / beyond];
    finger.style.left = `${50 + 50 * hand.finger[0]}%`;
    finger.style.top = `${50 - 50 * hand.finger[1]}%`;
    finger.hidden = false;
    tell(hand);
  };
  pad.setAttribute('role', 'img');
  pad.setAttribute('aria-label', `${hand.name} trackpad: put a finger on it`);
  pad.addEventListener('pointerdown', (event) => {
    pad.setPointerCapture(event.pointerId);
    move(event);
  });
  pad.addEventListener('pointermove', (event) => hand.finger && move(event));
  pad.addEventListener('lostpointercapture', () => {
    hand.finger = null;
    finger.hidden = true;
    tell(hand);
  });
}

function build(hand) {
  Object.assign(hand, { pressed: new Set(), finger: null, pull: 0 });
  const copy = document.getElementById('hand').content.cloneNode(true);
  hand.field = copy.querySelector('fieldset');
  hand.field.id = hand.name.toLowerCase();
  hand.field.querySelector('legend').textContent = hand.name;
  hand.field.querySelectorAll('button').forEach((button) => watchButton(hand, button));
  watchPad(hand, hand.field.querySelector('.pad'));
  const range = hand.field.querySelector('input');
  range.addEventListener('input', () => {
    hand.pull = Number(range.value);
    tell(hand);
  });
  document.getElementById('hands').append(copy);
}

function watchKeys() {
  const find = (key) =>
    hands.flatMap((hand) => Object.entries(hand.keys).map(([input, name]) => ({ hand, input, name })))
      .find(({ name }) => name === key.toLowerCase());
  const follow = (on) => (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const found = find(event.key);
    if (found) press(found.hand, found.input, on);
  };
  addEventListener('keydown', follow(true));
  addEventListener('keyup', follow(false));
  addEventListener('blur', () => {
    for (const hand of hands) for (const input of [...hand.pressed]) press(hand, input, false);
  });
}

hands.forEach(build);
watchKeys();
