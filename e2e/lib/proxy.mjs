// A proxy between phone and program that loses answers and breaks connections when a test tells it to.

import net from 'node:net';

export class Proxy {
  #pairs = new Set();
  #withhold = null;
  #marks = [];

  static async start(t, program) {
    const proxy = new Proxy(program.port);
    t.after(() => proxy.close());
    await new Promise((resolve) => { proxy.server.listen(0, '127.0.0.1', resolve); });
    proxy.url = program.url.replace(`:${program.port}/`, `:${proxy.server.address().port}/`);
    return proxy;
  }

  constructor(port) {
    this.port = port;
    this.uploads = 0;  // requests to upload so far
    this.bytes = 0;    // bytes of such requests so far
    this.server = net.createServer((phone) => this.#join(phone));
  }

  // The next upload that the program answers reaches it whole, but the phone sees only a broken connection.
  async loseNextAnswer() { this.#break(await this.holdNextAnswer()); }

  // Resolves once the program has answered an upload completely; the phone goes on waiting for that answer.
  holdNextAnswer() { return new Promise((resolve) => { this.#withhold = resolve; }); }

  // Resolves when that many bytes of uploads have passed in all, which is most often in the middle of a body.
  passed(bytes) { return new Promise((reached) => { this.#marks.push({ bytes, reached }); }); }

  // Breaks every connection there is.
  cut() { this.#pairs.forEach((pair) => this.#break(pair)); }

  close() {
    this.cut();
    this.server.close();
  }

  #join(phone) {
    const computer = net.connect(this.port, '127.0.0.1');
    const pair = { phone, computer, isUpload: false, withheld: null };
    this.#pairs.add(pair);
    for (const socket of [phone, computer]) {
      socket.on('error', () => this.#break(pair));
      socket.on('close', () => this.#pairs.delete(pair));
    }
    phone.once('data', (data) => {
      pair.isUpload = data.toString('latin1', 0, 13) === 'POST /upload?';
      this.uploads += pair.isUpload ? 1 : 0;
    });
    phone.on('data', (data) => this.#forward(pair, data));
    phone.on('end', () => computer.end());
    computer.on('data', (data) => this.#answer(pair, data));
    computer.on('end', () => (pair.withheld ? pair.withheld(pair) : phone.end()));
  }

  #forward(pair, data) {
    if (!pair.computer.write(data)) {
      pair.phone.pause();
      pair.computer.once('drain', () => pair.phone.resume());
    }
    if (!pair.isUpload) return;
    this.bytes += data.length;
    this.#marks = this.#marks.filter((mark) => mark.bytes > this.bytes || mark.reached());
  }

  #answer(pair, data) {
    if (pair.isUpload && this.#withhold) {
      pair.withheld = this.#withhold;
      this.#withhold = null;
    }
    if (!pair.withheld) pair.phone.write(data);
  }

  // A socket whose own side has ended cannot be reset any more.
  #break({ phone, computer }) {
    for (const socket of [phone, computer]) {
      if (socket.writableEnded) socket.destroy();
      else socket.resetAndDestroy();
    }
  }
}
