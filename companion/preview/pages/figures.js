// What the headset page shows besides the picture, counted over the last second.

const median = (values) => [...values].sort((a, b) => a - b)[values.length >> 1];

export class Figures {
  constructor() {
    this.sent = new Map();  // when each pose was sent, by its number
    this.newest = null;
    this.clear();
  }

  clear() {
    Object.assign(this, { shown: 0, dropped: 0, bytes: 0, ages: [], driver: [], encoding: [], since: performance.now() });
  }

  // A companion that was started anew counts from the beginning.
  startOver() {
    this.newest = null;
    this.clear();
  }

  poseSent(number) {
    this.sent.set(number, performance.now());
    this.sent.delete(number - 1000);
  }

  // The age of the pose in milliseconds, or null when it is none of this page's.
  frameShown({ number, poseNumber, poseToFrame, encoding, bytes }) {
    if (this.newest !== null) this.dropped += Math.max(0, number - this.newest - 1);
    this.newest = number;
    this.shown += 1;
    this.bytes += bytes;
    this.encoding.push(encoding);
    const sent = this.sent.get(poseNumber);
    if (sent === undefined) return null;
    const age = performance.now() - sent;
    this.ages.push(age);
    this.driver.push(poseToFrame);
    return age;
  }

  // Text for the second that ends now, or null before it is over.
  take(leads) {
    const seconds = (performance.now() - this.since) / 1000;
    if (seconds < 1) return null;
    const rate = (this.shown / seconds).toFixed(0);
    const lines = [`${rate} frames/s, ${(this.dropped / seconds).toFixed(0)} dropped`];
    if (this.ages.length > 0 && leads) {
      lines.push(`pose ${median(this.ages).toFixed(0)} ms old, ${median(this.driver).toFixed(0)} of it driver and runtime`);
    }
    if (this.shown > 0) {
      const megabits = (this.bytes * 8e-6) / seconds;
      lines.push(`${megabits.toFixed(1)} Mbit/s, compressed in ${median(this.encoding).toFixed(1)} ms`);
    }
    if (!leads) lines.push('another page turns the head');
    this.clear();
    return lines.join('\n');
  }
}
