// ---- View: shows the queue, at most once a frame

const view = (function () {
  const perFrame = 40;  // rows built in one frame, so that a pick of 500 does not freeze the page
  const groups = {
    waiting: 'queue', sending: 'queue', saved: 'saved', failed: 'failed', cancelled: 'skipped', known: 'skipped',
  };
  const samples = [];   // [time, bytes sent so far], for the speed of the last seconds
  let scheduled = false;
  let summedAt = 0;
  let celebrated = true;
  let speed = 0;        // bytes a second over the last seconds, or when something was last sent

  function soon() {
    if (scheduled) return;
    scheduled = true;
    requestAnimationFrame(frame);
  }

  function frame() {
    scheduled = false;
    let built = 0;
    for (const item of queue.changed) {
      if (!item.row && item.state !== 'gone' && ++built > perFrame) break;
      queue.changed.delete(item);
      show(item);
    }
    if (queue.changed.size) soon();
    summary();
  }

  // -- Rows

  function build(item) {
    const root = $.rowTemplate.content.firstElementChild.cloneNode(true);
    const part = (selector) => root.querySelector(selector);
    item.row = {
      root, thumb: part('.thumb'), size: part('.size'), state: part('.state'), bar: part('.bar'), fill: part('.bar i'),
      tick: part('.tick'), drop: part('[data-act=drop]'), again: part('[data-act=again]'), shown: '',
    };
    root.dataset.id = item.id;
    part('.name').textContent = item.file.name;
    part('.thumb use').setAttribute('href', /^video\//.test(item.file.type) ? '#i-video' : '#i-picture');
    item.row.size.textContent = bytesText(item.file.size);
  }

  function show(item) {
    if (item.state === 'gone') {
      if (item.row) item.row.root.remove();
      item.row = null;
      return;
    }
    const fresh = !item.row;
    if (fresh) build(item);
    const row = item.row;
    if (row.shown !== item.state) arrange(item, row);
    row.state.textContent = stateText(item);
    if (item.state === 'sending') row.fill.style.transform = 'scaleX(' + part(item) + ')';
    if (fresh) previews.watch(item);
  }

  // Moves a row to the list of its state: rows that need the user come first, saved ones last.
  function arrange(item, row) {
    const state = item.state;
    const list = $[groups[state] + 'Rows'];
    const hadFocus = row.root.contains(document.activeElement);
    list.parentNode.hidden = false;
    if (row.root.parentNode !== list) {
      if (state === 'saved') list.insertBefore(row.root, list.firstChild);
      else list.insertBefore(row.root, row.shown && Array.from(list.children).find((other) => Number(other.dataset.id) > item.id) || null);
    }
    row.shown = row.root.dataset.state = state;
    row.bar.hidden = state !== 'sending';
    row.tick.toggleAttribute('hidden', state !== 'saved');
    row.drop.hidden = state === 'saved';
    row.again.hidden = !(state === 'failed' || groups[state] === 'skipped') || item.final || Boolean(limit.refusal(item.file));
    label(item, row);
    if (hadFocus) refocus(row, list);
  }

  function label(item, row) {
    const name = item.file.name;
    const drop = queue.pending(item) ? ['取消', 'Cancel'] : ['移除', 'Remove'];
    row.drop.setAttribute('aria-label', both(drop[0], drop[1]) + ': ' + name);
    const again = item.state === 'failed' ? '重试 / Retry' : item.state === 'known' ? '再发一次 / Send again' : '发送 / Send';
    row.again.textContent = again;
    row.again.setAttribute('aria-label', again + ': ' + name);
  }

  function refocus(row, list) {
    const button = !row.again.hidden ? row.again : !row.drop.hidden ? row.drop : null;
    (button || list.parentNode.querySelector('h2')).focus({ preventScroll: true });
  }

  const part = (item) => (item.file.size ? item.sent / item.file.size : 0);

  function stateText(item) {
    if (item.unsure && item.state === 'waiting') return '正在核对 / Checking';
    if (item.state === 'waiting') return item.tries ? '稍后重试 / Trying again soon' : '等待 / Waiting';
    if (item.state === 'sending') return item.sent < item.file.size ? Math.floor(part(item) * 100) + ' %' : '正在保存 / Saving';
    if (item.state === 'saved') return '已保存 / Saved · ' + item.note;
    return item.note;
  }

  // -- Summary

  function count() {
    const sum = { waiting: 0, sending: 0, saved: 0, failed: 0, cancelled: 0, known: 0, bytes: 0, sent: 0, savedNow: 0 };
    queue.items.forEach((item) => {
      sum[item.state]++;
      if (!queue.inBatch(item) || !(queue.pending(item) || item.state === 'saved')) return;
      sum.bytes += item.file.size;
      sum.sent += item.sent;
      if (item.state === 'saved') sum.savedNow++;
    });
    sum.pending = sum.waiting + sum.sending;
    return sum;
  }

  // The summary is not updated in every frame, but the last change is never lost. Notices above the rows appear and
  // disappear together with changes of the rows, so that no row moves away under a finger.
  function summary() {
    const isShown = !$.sum.hidden && $.hold.hidden === !uploader.hold;
    if (isShown && now() - summedAt < 100 && uploader.running()) {
      setTimeout(soon, 120);
      return;
    }
    summedAt = now();
    const sum = count();
    const busy = queue.items.size > 0;
    $.page.classList.toggle('busy', busy);
    $.hero.hidden = $.promise.hidden = busy;
    $.failedGroup.hidden = !sum.failed;
    $.queueGroup.hidden = !sum.pending;
    $.skippedGroup.hidden = !(sum.known + sum.cancelled);
    $.savedGroup.hidden = !sum.saved;
    $.retryAll.hidden = queue.list((item) => item.state === 'failed' && !item.final && !limit.refusal(item.file)).length < 2;
    $.sendAll.hidden = sum.known + sum.cancelled < 2;
    showHold(sum);
    showHint(busy);
    showProgress(sum);
    showDone(sum);
  }

  function showProgress(sum) {
    $.sum.hidden = !sum.pending;
    if (!sum.pending) {
      samples.length = 0;
      return;
    }
    const percent = sum.bytes ? Math.floor((100 * sum.sent) / sum.bytes) : 0;
    $.sumDone.textContent = sum.savedNow;
    $.sumAll.textContent = sum.savedNow + sum.pending;
    $.sumBar.setAttribute('aria-valuenow', percent);
    $.sumBar.firstElementChild.style.transform = 'scaleX(' + (sum.bytes ? sum.sent / sum.bytes : 0) + ')';
    $.stay.hidden = !uploader.running();
    $.stop.hidden = Boolean(uploader.hold && uploader.hold.kind === 'stopped');
    $.sumPace.textContent = paceText(sum);
  }

  function paceText(sum) {
    const time = now();
    const last = samples[samples.length - 1];
    if (!last || time - last[0] > 400) samples.push([time, sum.sent]);
    while (samples.length > 2 && time - samples[0][0] > 6000) samples.shift();
    const latest = (sum.sent - samples[0][1]) / ((time - samples[0][0]) / 1000);
    if (!sum.sending || !(latest > 0) || time - samples[0][0] < 800) return '共 / Total ' + bytesText(sum.bytes);
    speed = latest;
    return bytesText(speed) + '/s · 剩余 / left ' + clockText((sum.bytes - sum.sent) / speed);
  }

  function showDone(sum) {
    const over = !sum.pending && sum.saved > 0;
    $.done.hidden = !over;
    if (sum.pending) celebrated = false;
    if (!over) return;
    const lacking = sum.failed;
    $.done.dataset.tone = lacking ? 'warning' : 'success';
    $.doneIcon.setAttribute('href', lacking ? '#i-alert' : '#i-check');
    $.doneTitle.textContent = lacking ? both('还有 ' + lacking + ' 个没发成', lacking + ' not sent') : '全部完成 / All done';
    $.doneText.textContent = both(sum.saved + ' 个已存进电脑', sum.saved + ' saved');
    if (!celebrated) announce($.doneTitle.textContent + '. ' + $.doneText.textContent);
    celebrated = true;
  }

  // -- Notices

  // The reasons for a hold: tone, icon, what happened, what it means, and the button.
  const again = '重试 / Retry';
  const holds = {
    offline: ['warning', 'signal', '连接断了，正在重连 / Connection lost, reconnecting',
      '照片都还在，连上后自动继续；请确认手机和电脑在同一个 Wi-Fi / Nothing is lost and it goes on by itself; check that both are on the same Wi-Fi', again],
    key: ['danger', 'scan', '密钥已失效，请重新扫码 / This code is no longer valid, scan again',
      '没发完的照片还在手机里 / What was not sent is still on the phone', again],
    banned: ['warning', 'clock', '电脑暂时不接受这部手机 / The computer is turning this phone away for now',
      '大约五分钟后自动继续 / It goes on by itself in about five minutes', again],
    full: ['warning', 'disk', '文件夹已满 / The folder is full',
      '在电脑上清理或换个文件夹，就会自动继续 / Make room or choose another folder on the computer and it goes on', again],
    disk: ['danger', 'disk', '电脑磁盘空间不足，暂停上传 / The computer is low on disk space, uploads are paused',
      '腾出空间后自动继续 / It goes on by itself once there is room', again],
    fault: ['danger', 'alert', '电脑没能保存 / The computer could not save',
      '请看电脑上的设置，再重试 / Look at the settings on the computer, then retry', again],
    pace: ['info', 'clock', '电脑每分钟收 120 个，正在等下一轮 / The computer takes 120 a minute, waiting for the next round', '', ''],
    stopped: ['info', 'pause', '已停止 / Stopped', '', '继续 / Continue'],
  };

  function showHold(sum) {
    const hold = uploader.hold;
    const alive = hold && (sum.pending || queue.list((item) => item.heldBy).length);
    $.hold.hidden = !alive;
    if (!alive) return;
    const [tone, icon, title, more, button] = holds[hold.kind];
    const text = hold.text || title;
    $.hold.dataset.tone = tone;
    $.hold.dataset.kind = hold.kind;
    $.holdIcon.setAttribute('href', '#i-' + icon);
    $.holdMore.textContent = hold.kind === 'pace' ? paceMore(hold) : hold.kind === 'stopped'
      ? both('还有 ' + sum.pending + ' 个没发', sum.pending + ' not sent yet') : more;
    $.holdAct.hidden = !button;
    $.holdClear.hidden = hold.kind !== 'stopped';
    $.holdButton.textContent = button;
    if ($.holdText.textContent !== text) $.holdText.textContent = text;
    announce(text);
  }

  function paceMore(hold) {
    const seconds = Math.max(1, Math.ceil((hold.until - now()) / 1000));
    return both(seconds + ' 秒后自动继续', 'going on in ' + seconds + ' s');
  }

  // The notice for each state of the connection: icon, tone, text.
  const walls = {
    key: ['scan', 'danger', '密钥不对或已失效，请重新扫描电脑上的二维码 / This code is not valid (any more); scan the one on the computer'],
    banned: ['clock', 'warning', holds.banned[2] + '. ' + holds.banned[3]],
    lost: ['signal', 'warning', '连不上电脑，请确认在同一个 Wi-Fi / Cannot reach the computer; check that both are on the same Wi-Fi'],
  };

  // The warning before a selection: what would refuse files now or soon.
  function showHint(busy) {
    const room = status.room();
    const info = status.info;
    const held = uploader.hold && !$.hold.hidden;
    let text = '', tone = 'warning', icon = 'disk';
    if (walls[status.state]) {
      [icon, tone, text] = walls[status.state];
    } else if (info.diskLow) {
      [text, tone] = ['电脑磁盘空间不足，现在收不了 / The computer is low on disk space and takes nothing now', 'danger'];
    } else if (room < 1) {
      text = both('文件夹已满（上限 ' + info.folderLimit + ' 个），现在收不了', 'The folder is full (limit ' + info.folderLimit + ') and takes nothing now');
    } else if (room <= 20) {
      [text, tone] = [both('文件夹里还能放 ' + room + ' 个', 'Room for ' + room + ' more in the folder'), 'info'];
    }
    $.hint.hidden = !text || Boolean(held);
    $.hint.dataset.tone = tone;
    $.hint.querySelector('use').setAttribute('href', '#i-' + icon);
    $.hintText.textContent = text;
  }

  const links = {
    asking: '正在连接 / Connecting', ok: '已连接 / Connected', lost: '连接断开 / Disconnected',
    key: '请重新扫码 / Scan again', banned: '暂时被拒 / Turned away',
  };

  function showLink(state) {
    const changed = $.link.dataset.state !== state;
    $.link.dataset.state = state;
    $.linkText.textContent = links[state];
    summedAt = 0;
    soon();
    if (changed && !(state === 'ok' && uploader.running())) announce(links[state]);
  }

  status.listen(showLink);
  return { soon, walls, speed: () => speed };
})();
