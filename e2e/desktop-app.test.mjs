// The program with windows on desktops of several kinds: with a tray of the old and of the new kind, with one that comes
// late, and with none.

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { test } from 'node:test';
import { Session, Tevrin, tevrin } from './lib/desktop-session.mjs';
import { make } from './lib/files.mjs';
import { scratch, until } from './lib/program.mjs';

const welcome = '欢迎使用 Tevrin';
const question = '继续接收照片？';

// A desktop whose own colours are dark.
function darkDesktop(session) {
  const folder = path.join(session.home, '.config');
  fs.mkdirSync(folder, { recursive: true });
  fs.writeFileSync(path.join(folder, 'kdeglobals'), '[Colors:Button]\nBackgroundNormal=40,41,40\n[Colors:Window]\nBackgroundNormal=30,31,30\n');
  Object.assign(session.env, { XDG_CURRENT_DESKTOP: 'KDE', KDE_SESSION_VERSION: '5' });
}

for (const [colours, prepare, background] of [['light', () => {}, 'f6f5f2'], ['dark', darkDesktop, '161716']]) {
  test(`on a ${colours} desktop every window opens in the colours of the desktop without warnings`, async (t) => {
    const session = await Session.start(t);
    prepare(session);
    const { status, stderr } = session.run(tevrin, '--self-test');
    assert.equal(status, 0, stderr);
    assert.deepEqual(fs.readdirSync(session.home).filter((name) => !name.startsWith('.')), []);
    const program = new Tevrin(session);
    const { x, y } = session.place(await program.window('Tevrin'));
    await until(() => session.look({ x: x + 3, y: y + 3 }) === background, `#${background}`);
  });
}

test('icon, panel and notifications on a desktop with a tray', async (t) => {
  const session = await Session.start(t, { programs: [['trayer'], ['dunst']] });
  const program = new Tevrin(session, { settings: { workflow: { notify: true }, hotKeyPreset: 1 } });
  const icon = await program.icon();
  const main = await program.window('Tevrin');
  const left = { ...icon, width: 6 };
  const right = { ...left, x: icon.x + icon.width - 6 }; // too far from the left for a double click

  session.click(left);
  const panel = await program.panel();
  await program.hasKeyboard(panel.id);
  assert.ok(panel.height >= 240 && panel.height <= 900 - 26 - 40, `${panel.height}`);
  assert.ok(panel.y + panel.height <= icon.y, 'the panel stands above the bar');
  session.click(right);
  await program.noPanel();

  session.key('ctrl+alt+p');
  await program.hasKeyboard((await program.panel()).id);
  session.key('Escape');
  await program.noPanel();

  session.click(left);
  await program.hasKeyboard((await program.panel()).id);
  session.click(session.place(main));
  await program.noPanel();
  await program.hasKeyboard(main);

  assert.equal(program.again('--show-panel').status, 0);
  const before = await program.panel();
  await program.hasKeyboard(before.id);

  const resting = session.look(icon);
  assert.equal(await program.upload(fs.readFileSync(make(scratch(), 'photo.jpg', 3000))), 200);
  await until(() => session.look(icon) !== resting, 'the check mark');
  await until(() => session.look(icon) === resting, 'the icon to be itself again');
  await until(() => session.place(before.id).height > before.height, 'the note in the panel');
  await until(() => session.search('--class', 'Dunst').length > 0, 'the notification');
  assert.equal(fs.readdirSync(program.photos).filter((name) => name.endsWith('.jpg')).length, 1);

  assert.deepEqual(await program.end(), { code: 0, signal: null });
  assert.equal(program.stderr, '');
});

test('at login it opens no window and shows its icon whenever a tray appears', async (t) => {
  const session = await Session.start(t);
  const program = new Tevrin(session, { args: ['--login-item'] });
  await program.listens();
  for (let i = 0; i < 2; ++i) {
    const tray = session.add('trayer');
    await program.icon();
    assert.equal(program.own.length, 1);
    tray.kill();
    await until(() => program.own.length === 0, 'the icon to go with the tray');
  }
  assert.equal(program.again('--login-item').status, 0); // as when a session starts it twice
  assert.equal(program.again().status, 0);
  await program.window('Tevrin');
  assert.deepEqual(await program.end(), { code: 0, signal: null });
});

test('a StatusNotifierItem tray shows icon and menu, and a click opens the panel beside the bar', async (t) => {
  const session = await Session.start(t, { programs: [['xfce4-panel', '--disable-wm-check']] });
  const watcher = (property) => session.bus('org.kde.StatusNotifierWatcher', '/StatusNotifierWatcher',
    'org.freedesktop.DBus.Properties.Get', 'org.kde.StatusNotifierWatcher', property);
  await until(() => watcher('IsStatusNotifierHostRegistered').includes('true'), 'the bar');
  const program = new Tevrin(session);
  const item = (await until(() => /'([^'/]+)\/StatusNotifierItem'/.exec(watcher('RegisteredStatusNotifierItems')), 'the icon'))[1];
  const menu = session.bus(item, '/MenuBar', 'com.canonical.dbusmenu.GetLayout', '0', '-1', "['label']");
  for (const label of ['显示二维码', '照片墙', '设置', '帮助', '退出']) assert.ok(menu.includes(label), `${label} in ${menu}`);

  const main = await program.window('Tevrin');
  session.bus(item, '/StatusNotifierItem', 'org.kde.StatusNotifierItem.Activate', '0', '0');
  const panel = await program.panel();
  await program.hasKeyboard(panel.id);
  assert.ok(panel.x + panel.width <= 1280 && panel.x > 640 && panel.y > 0 && panel.y < 100, 'at the right end of the upper bar');
  assert.match(session.property('-id', panel.id, '_NET_WM_STATE'), /SKIP_TASKBAR/);

  session.run('xdotool', 'windowactivate', main);
  await program.noPanel();
  await program.hasKeyboard(main);
  session.key('alt+F4');
  await program.noWindow('Tevrin');
  assert.deepEqual(session.titled(question), []); // the icon is the way back
  assert.deepEqual(await program.end(), { code: 0, signal: null });
});

test('without a tray, closing the last window asks first and a second launch reopens it', async (t) => {
  const session = await Session.start(t);
  const program = new Tevrin(session, { onboardingDone: false });
  const closeLast = async () => {
    await program.hasKeyboard(await program.window(welcome));
    session.key('alt+F4');
    await program.hasKeyboard(await program.window(question));
  };

  await closeLast();
  session.key('Escape');
  await program.noWindow(question);

  await closeLast();
  session.key('Return'); // stay in the background
  await program.noWindow(welcome);
  await program.listens();

  assert.equal(program.again().status, 0);
  await closeLast();
  session.key('shift+Tab', 'Return'); // quit
  assert.deepEqual(await program.child.exited, { code: 0, signal: null });
  assert.notEqual(program.stored('onboardingDone'), true);
});
