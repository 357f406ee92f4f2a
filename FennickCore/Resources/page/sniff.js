// ---- Sniff: detects by the first bytes whether the computer accepts a file

// The signatures are those of the computer, so that a large file is refused before it is sent.
const sniff = (function () {
  const brands = new Set([
    'heic', 'heix', 'hevc', 'hevx', 'mif1', 'msf1', 'heim', 'heis', 'avif', 'avis', 'qt  ', 'm4v ', 'm4vh', 'm4vp',
    'isom', 'iso2', 'iso4', 'iso5', 'iso6', 'mp41', 'mp42', 'mp71', 'avc1', '3gp4', '3gp5', '3gp6', 'dash', 'mmp4',
  ]);

  function known(bytes) {
    const text = String.fromCharCode(...bytes);
    const at = (offset, wanted) => text.startsWith(wanted, offset);
    if (bytes.length < 4) return false;
    if (at(0, '\xff\xd8\xff') || at(0, 'GIF8') || at(0, 'II*\0') || at(0, 'MM\0*')) return true;
    if (at(0, '\x89PNG')) return bytes.length >= 8;
    if (bytes.length < 12) return false;
    if (at(0, 'RIFF') && at(8, 'WEBP')) return true;
    return at(4, 'ftyp') && brands.has(text.slice(8, 12).toLowerCase());
  }

  return {
    refusal: '不支持的文件类型，只接收照片和视频 / Unsupported file type; photos and videos only',
    // Rejects if the file cannot be read.
    takes: async (file) => known(new Uint8Array(await file.slice(0, 16).arrayBuffer())),
  };
})();
