// Where the head looks: by dragging, by the arrow keys, and by the sensors of a phone.
import { aboutX, aboutY, headOfDevice, multiply, radians } from '/orientation.js';

const fieldOfView = radians(90);
const keyTurn = radians(90);  // a second
const straightUp = radians(90);
const turns = {
  ArrowLeft: [1, 0],
  ArrowRight: [-1, 0],
  ArrowUp: [0, 1],
  ArrowDown: [0, -1],
};

export class Head {
  // `eyeWidth()` is the width of one eye's picture in CSS pixels: the scene follows the finger.
  constructor(surface, eyeWidth) {
    this.yaw = 0;
    this.pitch = 0;
    this.sensors = null;
    this.keys = new Set();
    this.watchPointer(surface, eyeWidth);
    this.watchKeys();
    addEventListener('deviceorientation', (event) => {
      if (event.alpha !== null) this.sensors = headOfDevice(event, screen.orientation.angle);
    });
  }

  watchPointer(surface, eyeWidth) {
    let dragged = null;
    surface.addEventListener('pointerdown', (event) => {
      if (dragged !== null) return;
      dragged = event;
      surface.setPointerCapture(event.pointerId);
    });
    surface.addEventListener('pointermove', (event) => {
      if (event.pointerId !== dragged?.pointerId) return;
      const turn = fieldOfView / eyeWidth();
      this.turn((event.clientX - dragged.clientX) * turn, (event.clientY - dragged.clientY) * turn);
      dragged = event;
    });
    surface.addEventListener('lostpointercapture', () => {
      dragged = null;
    });
  }

  watchKeys() {
    addEventListener('keydown', (event) => {
      if (!(event.key in turns) || event.ctrlKey || event.altKey || event.metaKey) return;
      this.keys.add(event.key);
      event.preventDefault();
    });
    addEventListener('keyup', (event) => this.keys.delete(event.key));
    addEventListener('blur', () => this.keys.clear());
  }

  turn(left, up) {
    this.yaw = (this.yaw + left) % (2 * Math.PI);
    this.pitch = Math.max(-straightUp, Math.min(straightUp, this.pitch + up));
  }

  // Keys turn it for as long as they are held.
  passTime(seconds) {
    for (const key of this.keys) {
      const [left, up] = turns[key];
      this.turn(left * keyTurn * seconds, up * keyTurn * seconds);
    }
  }

  // The companion makes the direction that is ahead now straight ahead; up and down are the page's own matter.
  level() {
    this.pitch = 0;
  }

  orientation() {
    return multiply(aboutY(this.yaw), this.sensors ?? aboutX(this.pitch));
  }
}
