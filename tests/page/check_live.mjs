// Checks the live page of a run that is being recorded in a browser: check_live.mjs VEX
// [PICTURE.png]
//
// Exits with 77 if the browser, or the module that serves pages, is missing.
import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {existsSync, mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {dirname, join, resolve} from 'node:path';
import {Browser, browserPath} from './browser.mjs';

const vex = resolve(process.argv[2]);
if (!browserPath() || !existsSync(join(dirname(vex), 'vex2serve.so'))) {
  console.log(`skipped: ${browserPath() ? 'the module vex2serve.so' : 'chromium'} is missing; scripts/setup installs what it needs`);
  process.exit(77);
}

const kPatience = 40000;
const folder = mkdtempSync(join(tmpdir(), 'vex-live-'));
const start = (...words) => spawn(vex, words, {cwd: folder, stdio: ['ignore', 'pipe', 'inherit']});
const ended = child => new Promise(done => { if (child.exitCode !== null) done(); else child.on('exit', done); });
const pause = time => new Promise(done => setTimeout(done, time));

async function until(page, expression, what) {
  const end = performance.now() + kPatience;
  while (!await page.run(expression)) {
    assert.ok(performance.now() < end, `${what}: ${await page.run('document.body.innerText.slice(0, 400)')}`);
    await pause(50);
  }
}

const frames = 'Vex.model.plates.length && Vex.model.plates[0].readings.frames';

async function look(browser, server) {
  const line = await new Promise(done => server.stdout.once('data', done));
  const page = await browser.open(/http:\S+/.exec(String(line))[0], {isOnline: true});
  assert.match(await page.run('document.querySelector("#messages").textContent'), /run\.vex does not exist yet/);
  const recorder = start('simulate', 'run.vex', '--cycles', '40', '--pace', '0.2');
  await until(page, `${frames} > 0`, 'the page shows the first frames');
  assert.equal(await page.run('document.querySelector("#live").textContent'), 'live');
  await until(page, `Vex.state.values === 'corrected' && ${frames} > 5`, 'there are results');
  await page.run('Vex.pick(["0:7"]); Vex.set({scale: "log"}); document.querySelector("#colour-by").focus()');
  await page.run('window.select = document.querySelector("#amplification-controls").firstChild; scrollTo({top: 200, behavior: "instant"})');
  const before = await page.run(frames);
  recorder.kill('SIGKILL');
  await ended(recorder);
  const resumed = start('simulate', 'run.vex', '--cycles', '40', '--resume', '--pace', '0.1');
  await until(page, `${frames} > ${before + 8}`, 'the page grows while the run goes on');
  assert.deepEqual(await page.run('[[...Vex.state.picked], Vex.state.scale, document.activeElement.id, scrollY]'),
    [['0:7'], 'log', 'colour-by', 200]);
  assert.ok(await page.run('window.select.isConnected'), 'a list that is open stays open');
  assert.ok(await page.run('Vex.amplification.shown.length > 0'), 'curves are drawn');
  if (process.argv[3]) writeFileSync(process.argv[3], await page.screenshot());
  await until(page, `${frames} === 40 && document.querySelector("#summary").textContent.includes("complete")`, 'the run ends');
  await ended(resumed);
  await until(page, 'document.querySelector("#details").textContent.includes("SHA-256")', 'the complete file is described');
  assert.deepEqual(page.messages, []);
  server.kill('SIGINT');
  await ended(server);
  assert.equal(server.exitCode, 0);
  await until(page, 'document.querySelector("#live").textContent.startsWith("connection lost")', 'the page says that it is alone');
  assert.equal(await page.run(frames), 40);
}

let code = 1;
const server = start('follow', 'run.vex', '--serve');
const browser = await Browser.start();
try {
  await look(browser, server);
  console.log('ok');
  code = 0;
} catch (error) {
  console.log(`FAILED\n${error.stack}`);
} finally {
  server.kill('SIGKILL');
  await browser.stop();
  rmSync(folder, {recursive: true, force: true});
}
process.exit(code);
