// Two computers on one cable: network namespaces joined by a pair of virtual interfaces with private addresses.
// Nothing of it is seen outside, and it is gone when the test ends. Works for root, and for everyone where the
// kernel lets users make namespaces.

import { spawn, spawnSync } from 'node:child_process';
import { until } from './program.mjs';

const isRoot = process.getuid() === 0;

class Host {
  constructor(t, name, inside = []) {
    this.name = name;
    const own = isRoot || inside.length ? [] : ['--user', '--map-root-user'];
    // Lives for as long as its standard input is open; the fresh /sys shows the interfaces of this host.
    this.child = spawn([...inside, 'unshare'][0], [...inside, 'unshare', ...own, '--net', '--mount', 'sh', '-c',
      'mount -t sysfs sysfs /sys; echo ready; cat >/dev/null'].slice(1), { stdio: ['pipe', 'pipe', 'pipe'] });
    this.said = '';
    this.child.stdout.on('data', (data) => { this.said += data; });
    this.child.stderr.on('data', (data) => { this.said += data; });
    t.after(() => this.child.stdin.end());
  }

  // The words before a command that is to run on this host.
  get prefix() {
    const { pid } = this.child;
    return ['nsenter', `--target=${pid}`, ...(isRoot ? [] : ['--user', '--preserve-credentials']), '--net', '--mount', '--'];
  }

  async ready() {
    await until(() => this.said.includes('ready') || this.child.exitCode !== null, `the host "${this.name}"`);
    if (!this.said.includes('ready')) throw new Error(`no network namespace can be made here: ${this.said}`);
    this.ip('link set lo up');
  }

  run(command, ...args) {
    const [first, ...rest] = [...this.prefix, command, ...args];
    return spawnSync(first, rest, { encoding: 'utf8', timeout: 30000, maxBuffer: 64 << 20 });
  }

  ip(words) {
    const { status, stderr } = this.run('ip', ...words.split(' '));
    if (status !== 0) throw new Error(`ip ${words}: ${stderr}`);
  }

  // A request from this host: the status and the body; status 0 when nobody answers.
  ask(url, ...more) {
    const { stdout, stderr } = this.run('curl', '--silent', '--show-error', '--max-time', '10', '--write-out', '\n%{http_code}', ...more, url);
    const end = stdout.lastIndexOf('\n');
    return { status: Number(stdout.slice(end + 1)), text: stdout.slice(0, end), error: stderr };
  }
}

// The computer has `address`, the phone 192.168.77.2; the computer's cable is called eth0.
export async function twoHosts(t, address = '192.168.77.1') {
  const computer = new Host(t, 'computer');
  await computer.ready();
  const phone = new Host(t, 'phone', isRoot ? [] : computer.prefix);
  await phone.ready();
  computer.ip(`link add eth0 type veth peer name wlan0 netns ${phone.child.pid}`);
  computer.ip(`addr add ${address}/24 dev eth0`);
  computer.ip('link set eth0 up');
  phone.ip('addr add 192.168.77.2/24 dev wlan0');
  phone.ip('link set wlan0 up');
  return { computer, phone };
}
