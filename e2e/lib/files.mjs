// Makes the pictures and videos that the tests send: small, valid, and each one different.

import fs from 'node:fs';
import path from 'node:path';

// An eight by eight pixel JPEG.
const jpeg = Buffer.from(
  '/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAA0JCgsKCA0LCgsODg0PEyAVExISEyccHhcgLikxMC4pLSwzOko+MzZGNywtQFdBRkxOUlNSMj5aYVpQYEpRUk//' +
  '2wBDAQ4ODhMREyYVFSZPNS01T09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09PT0//wAARCAAIAAgDASIAAhEBAxEB/8QA' +
  'FQABAQAAAAAAAAAAAAAAAAAAAAT/xAAUEAEAAAAAAAAAAAAAAAAAAAAA/8QAFQEBAQAAAAAAAAAAAAAAAAAAAgX/xAAUEQEAAAAAAAAAAAAAAAAAAAAA' +
  '/9oADAMBAAIRAxEAPwCQA0p//9k=', 'base64');

const png = Buffer.from(
  'iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==', 'base64');

let serial = 0;

// What comes after the picture's own end is ignored by decoders, so padding keeps the file valid.
function padded(start, size) {
  const tail = Buffer.alloc(Math.max(16, size - start.length), 0x20);
  tail.write(`no ${++serial} `);
  return Buffer.concat([start, tail]);
}

function box(type, body) {
  const head = Buffer.alloc(8);
  head.writeUInt32BE(8 + body.length);
  head.write(type, 4, 'latin1');
  return Buffer.concat([head, body]);
}

function bytesFor(name, size) {
  switch (path.extname(name).toLowerCase()) {
    case '.png': return padded(png, size);
    case '.mp4': return Buffer.concat([box('ftyp', Buffer.from('isom\0\0\0\0isomiso2', 'latin1')), box('mdat', padded(Buffer.alloc(0), size))]);
    case '.dng': return padded(Buffer.from('II*\0\x08\0\0\0\0\0\0\0\0\0\0\0', 'latin1'), size);
    case '.txt': return Buffer.from('not a picture');
    default: return padded(jpeg, size);
  }
}

// Writes a file of about `size` bytes whose kind follows from its name, and gives its path.
export function make(folder, name, size = 4000) {
  const file = path.join(folder, name);
  fs.mkdirSync(folder, { recursive: true });
  fs.writeFileSync(file, size === 0 ? Buffer.alloc(0) : bytesFor(name, size));
  return file;
}

// A video whose bytes after the first ones take no place on the disk.
export function makeSparse(folder, name, size) {
  const file = make(folder, name, 0);
  fs.writeFileSync(file, box('ftyp', Buffer.from('isom\0\0\0\0isomiso2', 'latin1')));
  fs.truncateSync(file, size);
  return file;
}

export const makeMany = (folder, count, size) =>
  Array.from({ length: count }, (_, i) => make(folder, `IMG_${String(i + 1).padStart(4, '0')}.jpg`, size));
