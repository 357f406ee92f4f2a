// ---- Awake: keeps the screen on while files are sent

// A phone that goes to sleep cuts the connection. Browsers offer a lock for this only to pages of encrypted sites;
// elsewhere a video that plays keeps the screen on. It has to have sound, which is silence, and may not be marked as
// looping, or iPhones pay no attention to it. Made with
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

  // A browser that refuses leaves the screen to the phone's own setting.
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
    // To be called for a tap: browsers start a video with sound only then, and later those that a tap has started.
    permit() {
      if (navigator.wakeLock || video.firstChild) return;
      load();
      video.play().then(() => wanted || video.pause(), () => {});
    },
    // The browser lets go of the lock, and may stop the video, while the page is hidden.
    wake() {
      if (!wanted) return;
      if (navigator.wakeLock) hold();
      else play();
    },
  };
})();
