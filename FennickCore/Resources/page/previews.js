// ---- Previews: small pictures, created one at a time and only for visible rows

const previews = (function () {
  const edge = 112;
  const wanted = [];
  const rows = new WeakMap();
  let busy = false;
  const seen = 'IntersectionObserver' in window ? new IntersectionObserver(appear, { rootMargin: '120px' }) : null;

  function appear(entries) {
    entries.forEach((entry) => {
      if (!entry.isIntersecting) return;
      seen.unobserve(entry.target);
      wanted.push(rows.get(entry.target));
    });
    work();
  }

  const drawable = (file) => /^image\/(?!tiff|x-|dng)/.test(file.type) && file.size < 40e6;

  function work() {
    if (busy || !wanted.length) return;
    const item = wanted.pop();
    if (!item.row || item.state === 'gone') return work();
    busy = true;
    draw(item).catch(() => {}).then(() => {
      busy = false;
      setTimeout(work, 0);
    });
  }

  // The full picture is decoded once, drawn at a small size, and freed immediately.
  function draw(item) {
    const url = URL.createObjectURL(item.file);
    const image = new Image();
    image.src = url;
    return image.decode().then(() => {
      const canvas = crop(image);
      if (!item.row) return;
      item.row.thumb.textContent = '';
      item.row.thumb.appendChild(canvas);
    }).finally(() => {
      URL.revokeObjectURL(url);
      image.removeAttribute('src');
    });
  }

  function crop(image) {
    const side = Math.min(image.naturalWidth, image.naturalHeight);
    if (!side) throw new Error('no pixels');
    const canvas = document.createElement('canvas');
    canvas.width = canvas.height = edge;
    const pen = canvas.getContext('2d');
    pen.imageSmoothingQuality = 'high';
    pen.drawImage(image, (image.naturalWidth - side) / 2, (image.naturalHeight - side) / 2, side, side, 0, 0, edge, edge);
    return canvas;
  }

  return {
    watch(item) {
      if (!seen || !drawable(item.file)) return;
      rows.set(item.row.root, item);
      seen.observe(item.row.root);
    },
  };
})();
