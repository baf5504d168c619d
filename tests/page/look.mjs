// Takes screenshots of a page for a person to look at: node look.mjs PAGE.html FOLDER
import {writeFileSync, mkdirSync} from 'node:fs';
import {resolve} from 'node:path';
import {pathToFileURL} from 'node:url';
import {Browser} from './browser.mjs';

const [path, folder] = process.argv.slice(2);
mkdirSync(folder, {recursive: true});
const browser = await Browser.start();
const views = {wide: {}, 'wide-dark': {dark: true}, phone: {width: 390, height: 844, mobile: true, scale: 2},
  'phone-dark': {width: 390, height: 844, mobile: true, scale: 2, dark: true}, zoom: {width: 427, height: 267, scale: 3}};
for (const [name, view] of Object.entries(views)) {
  const page = await browser.open(pathToFileURL(resolve(path)), view);
  writeFileSync(`${folder}/${name}.png`, await page.screenshot());
  writeFileSync(`${folder}/${name}-full.png`, await page.screenshot(true));
  console.log(name, `loaded in ${Math.round(page.loadTime)} ms`, page.messages.join('\n'));
  if (name === 'wide') writeFileSync(`${folder}/page.pdf`, await page.pdf());
  await page.close();
}
await browser.stop();
