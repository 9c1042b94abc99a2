// The WebSocket to the companion. While the companion is away the page tries again once a second.
const retryMs = 1000;

export class Link {
  // `receiver` may have opened(), closed(), text(message) and frame(buffer).
  constructor(path, receiver) {
    this.url = `ws://${location.host}${path}`;
    this.receiver = receiver;
    this.open();
  }

  open() {
    this.socket = new WebSocket(this.url);
    this.socket.binaryType = 'arraybuffer';
    this.socket.onopen = () => this.receiver.opened();
    this.socket.onclose = () => {
      this.receiver.closed();
      setTimeout(() => this.open(), retryMs);
    };
    this.socket.onmessage = ({ data }) => {
      if (typeof data === 'string') this.receiver.text(JSON.parse(data));
      else this.receiver.frame(data);
    };
  }

  get isOpen() {
    return this.socket.readyState === WebSocket.OPEN;
  }

  // What is sent while there is no connection is lost.
  send(message) {
    if (this.isOpen) this.socket.send(JSON.stringify(message));
  }
}
