// ---- Awake: keeps the screen on while files are sent

// A sleeping phone closes its connections. Browsers offer a wake lock only to pages of encrypted sites; on other
// pages a playing video keeps the screen on. On iPhones it needs a sound track (which is silent) and must not be
// marked as looping. The videos were created with
//   ffmpeg -f lavfi -i color=black:s=16x16:r=1:d=8 -f lavfi -i anullsrc=r=8000:cl=mono -t 8 \
//     -c:v libx264 -profile:v baseline -pix_fmt yuv420p -crf 51 -c:a aac -b:a 8k -movflags +faststart awake.mp4
//   (the same sources) -c:v libvpx -crf 63 -b:v 1k -c:a libopus -b:a 6k -frame_duration 60 awake.webm
const awake = (function () {
  const clips = { 'video/mp4': '__BASE64:awake.mp4__', 'video/webm': '__BASE64:awake.webm__' };
  const video = $.awake;
  let wanted = false;
  let lock = null;

  function source([type, text]) {
    const part = document.createElement('source');
    part.type = type;
    part.src = URL.createObjectURL(new Blob([Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0))], { type }));
    return part;
  }

  function load() {
    if (video.firstChild) return;
    video.append(...Object.entries(clips).map(source));
    on(video, 'timeupdate', () => { if (video.currentTime > 4) video.currentTime = 0.5; });
    on(video, 'ended', play);
  }

  // If the browser refuses, the setting of the phone decides when the screen turns off.
  function play() {
    if (wanted) video.play().catch(() => {});
  }

  async function hold() {
    if (lock || document.hidden) return;
    try {
      lock = await navigator.wakeLock.request('screen');
      lock.onrelease = () => { lock = null; };
      if (!wanted) lock.release();
    } catch (e) {
      // Refused, for example because the battery is low.
    }
  }

  function turn(on) {
    if (on === wanted) return;
    wanted = on;
    if (!on) {
      video.pause();
      if (lock) lock.release();
    } else if (navigator.wakeLock) {
      hold();
    } else {
      load();
      play();
    }
  }

  return {
    turn,
    // Call this in the handler of a tap: browsers start a video with sound only then. Later calls may restart it.
    permit() {
      if (navigator.wakeLock || video.firstChild) return;
      load();
      video.play().then(() => wanted || video.pause(), () => {});
    },
    // The browser releases the lock, and may stop the video, while the page is hidden.
    wake() {
      if (!wanted) return;
      if (navigator.wakeLock) hold();
      else play();
    },
  };
})();
