// A disk in memory for one program, seen by it alone and gone when it ends. Its size is a limit, so it costs only what is
// written. Works for root, and for everyone where the kernel lets users make namespaces.

import { spawnSync } from 'node:child_process';

const own = process.getuid() === 0 ? [] : ['--user', '--map-root-user'];
const inside = process.getuid() === 0 ? [] : ['--user', '--preserve-credentials'];

// The words before the command of a program whose `folder` is such a disk; null where none can be made.
export function onDisk(folder, size) {
  const words = ['unshare', ...own, '--mount', 'sh', '-c', `mount -t tmpfs -o size=${size} tmpfs "$0" && exec "$@"`, folder];
  const [command, ...rest] = [...words, 'true'];
  return spawnSync(command, rest).status === 0 ? words : null;
}

export function resizeDisk(program, size) {
  const { status, stderr } = spawnSync('nsenter', [`--target=${program.child.pid}`, ...inside, '--mount', 'mount', '-o', `remount,size=${size}`, 'tmpfs',
    program.folder], { encoding: 'utf8' });
  if (status !== 0) throw new Error(`the disk cannot be resized: ${stderr}`);
}

// The folder as it is seen from outside the program.
export const seenFromOutside = (program) => `/proc/${program.child.pid}/root${program.folder}`;
