// Checks the installed extension in a real VS Code (code-server) through headless Chromium: the
// VB6 Projects view, modStock's outline, modLegacy's diagnostics, a folder move through the view's
// context menu. Screenshots go to build/screenshots/code-server-*.png. Not part of `npm test`:
// code-server is not a dependency of the project. How it was brought up here (Node 20):
//   mkdir /tmp/cs && cd /tmp/cs && npm install --ignore-scripts code-server@4.100.3 puppeteer-core@23
//   npm_config_nodedir=/usr npm rebuild argon2 --build-from-source
//   cd node_modules/code-server/lib/vscode && npm install --omit=dev --ignore-scripts
//   npm_config_nodedir=/usr npm_config_yes=true npm rebuild kerberos @vscode/spdlog native-watchdog node-pty
//   mkdir -p node_modules/@vscode/ripgrep/bin && cp /usr/bin/rg node_modules/@vscode/ripgrep/bin/
//   ln -s node_modules node_modules.asar; (cd extensions && npm install --omit=dev --ignore-scripts)
//   node out/node/entry.js --install-extension arbolet-vb6-VERSION.vsix
//   node out/node/entry.js --bind-addr 127.0.0.1:8123 --auth none FOLDER   (a copy of examples/Inventory,
//     with "arbolet.path" in the user settings when the .vsix holds no arbolet, and
//     "arbolet.followCursor": true in FOLDER/.vscode/settings.json)
//   NODE_PATH=/tmp/cs/node_modules ARBOLET=... FOLDER=... node scripts/code-server-check.js
const puppeteer = require('puppeteer-core');
const fs = require('fs');
const { execFileSync } = require('child_process');
const out = require('path').resolve(__dirname, '../../../build/screenshots');
const arbolet = process.env.ARBOLET;
fs.mkdirSync(out, { recursive: true });
const sleep = (ms) => new Promise((r) => setTimeout(r, ms));
const results = [];
const check = (what, ok, detail = '') => { results.push(`${ok ? 'PASS' : 'FAIL'} ${what}${detail ? ': ' + detail : ''}`); };
(async () => {
  const browser = await puppeteer.launch({
    executablePath: '/usr/bin/chromium', headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
      '--disable-component-update', '--disable-sync', `--user-data-dir=${fs.mkdtempSync(require('path').join(require('os').tmpdir(), 'code-server-chrome-'))}`],
    defaultViewport: { width: 1400, height: 1500 },
  });
  const page = await browser.newPage();
  await page.goto(`http://127.0.0.1:8123/?folder=${process.env.FOLDER}`, { waitUntil: 'domcontentloaded' });
  await page.waitForSelector('.monaco-workbench', { timeout: 60000 });
  await sleep(8000);
  const header = async (title) => {
    const hs = await page.$$('.pane-header');
    for (const h of hs) if ((await h.evaluate((e) => e.textContent)).trim().toUpperCase().startsWith(title.toUpperCase())) return h;
  };
  const setOpen = async (title, open) => {
    const h = await header(title);
    if (h && (await h.evaluate((e) => e.getAttribute('aria-expanded') === 'true')) !== open) await h.click();
  };
  // Fold the file explorer, open VB6 Projects.
  await setOpen('Inventory', false);
  await setOpen('Outline', false);
  await setOpen('VB6 Projects', true);
  await sleep(4000);
  const treeRows = async () => page.$$eval('.pane-body .monaco-list-row', (els) => els.map((e) => (e.querySelector('.label-name')?.textContent ?? '').trim()));
  let rows = await treeRows();
  console.log('rows:', rows.join(' | '));
  await page.screenshot({ path: `${out}/code-server-2-view.png` });
  check('VB6 Projects shows the project and its folders', ['Inventory', 'Stock Logic', 'Data Access', 'modStock', 'modLegacy'].every((l) => rows.some((r) => r.startsWith(l))), rows.join(' | '));
  check('modLegacy opened on a red node', rows.some((r) => /has no|closes/.test(r)));

  // Click modStock: opens the file; the outline lists its procedures.
  const rowNamed = async (label) => {
    for (const r of await page.$$('.pane-body .monaco-list-row')) {
      const l = await r.evaluate((e) => (e.querySelector('.label-name')?.textContent ?? '').trim());
      if (l === label) return r;
    }
  };
  // Fold modLegacy's folder so that modStock is on screen (the list draws only visible rows).
  await (await (await rowNamed('Data Access'))?.$('.monaco-tl-twistie'))?.click();
  await sleep(1000);
  await (await rowNamed('modStock'))?.click();
  await sleep(3000);
  await setOpen('Outline', true);
  await sleep(3000);
  const tabs = await page.$$eval('.tab', (els) => els.map((e) => e.getAttribute('aria-label') || e.textContent));
  check('a click on modStock opens modStock.bas', tabs.some((t) => t.includes('modStock.bas')), tabs.join(' | '));
  rows = await treeRows();
  check('the outline of modStock lists its declarations', ['MAX_ITEMS', 'StockState', 'StockLine'].every((n) => rows.some((r) => r.includes(n))), rows.join(' | '));
  await page.screenshot({ path: `${out}/code-server-3-outline.png` });
  await setOpen('Outline', false);

  // modLegacy's diagnostics in the Problems panel.
  await (await (await rowNamed('Data Access'))?.$('.monaco-tl-twistie'))?.click();
  await sleep(1000);
  // Quick Open, not the tree: a row clicked while the tree redraws can miss.
  await page.keyboard.down('Control'); await page.keyboard.press('KeyP'); await page.keyboard.up('Control');
  await sleep(800);
  await page.keyboard.type('modLegacy.bas');
  await sleep(800);
  await page.keyboard.press('Enter');
  await sleep(2000);
  await page.keyboard.down('Control'); await page.keyboard.down('Shift'); await page.keyboard.press('KeyM');
  await page.keyboard.up('Shift'); await page.keyboard.up('Control');
  await sleep(3000);
  const problems = await page.$$eval('.markers-panel .monaco-list-row', (els) => els.map((e) => e.getAttribute('aria-label') || e.textContent));
  check('modLegacy has diagnostics in Problems', problems.some((p) => /If|Next|Wend|Loop/.test(p)), problems.slice(0, 4).join(' | '));
  await page.screenshot({ path: `${out}/code-server-4-problems.png` });

  await (await (await rowNamed('Data Access'))?.$('.monaco-tl-twistie'))?.click();
  await sleep(500);
  // With arbolet.followCursor (set in the folder's settings), a click on line 20 of modLegacy
  // selects the innermost block there, "For j = 1 To 10".
  const lineTops = await page.$$eval('.editor-instance .view-line', (els) =>
    els.map((e) => ({ top: e.getBoundingClientRect().top, left: e.getBoundingClientRect().left })).sort((a, b) => a.top - b.top));
  if (lineTops.length >= 20) await page.mouse.click(lineTops[19].left + 60, lineTops[19].top + 5);
  await sleep(2000);
  await page.screenshot({ path: `${out}/code-server-5-follow.png` });
  const followed = await page.$$eval('.pane-body .monaco-list-row.selected', (els) => els.map((e) => (e.querySelector('.label-name')?.textContent ?? '').trim()));
  check('following the cursor selects For j on line 20', followed.includes('For j = 1 To 10'), followed.join(' | '));

  // Reveal in VB6 Projects from the command palette selects the open file's component.
  // Following the cursor left "For j" selected, so only the command can select modLegacy.
  await page.keyboard.press('F1');
  await sleep(800);
  await page.keyboard.type('Reveal in VB6 Projects');
  await sleep(800);
  await page.keyboard.press('Enter');
  await sleep(2000);
  const selected = await page.$$eval('.pane-body .monaco-list-row.selected', (els) => els.map((e) => (e.querySelector('.label-name')?.textContent ?? '').trim()));
  await page.screenshot({ path: `${out}/code-server-6-reveal.png` });
  const active = await page.$$eval('.tab.active', (els) => els.map((e) => e.getAttribute('aria-label')));
  console.log('active tabs:', active);
  check('Reveal in VB6 Projects selects modLegacy', selected.includes('modLegacy'), selected.join(' | '));

  // Move modStock to Archive through the context menu.
  const stock = await rowNamed('modStock');
  await stock.click({ button: 'right' });
  await sleep(1000);
  const items = await page.$$('.monaco-menu .action-item');
  let clicked = false;
  for (const it of items) {
    const t = await it.evaluate((e) => e.textContent);
    if (t.includes('Move to Folder')) { await it.click(); clicked = true; break; }
  }
  check('the context menu has Move to Folder…', clicked);
  await sleep(1000);
  await page.screenshot({ path: `${out}/code-server-7-quickpick.png` });
  await page.keyboard.type('Archive');
  await page.keyboard.press('Enter');
  await sleep(3000);
  const listing = execFileSync(arbolet, ['folders', process.env.FOLDER + '/Inventory.vbp'], { encoding: 'utf8' });
  check('the .vbp has modStock in Archive', /Archive[\s\S]*modStock/.test(listing.split('\n').filter((l) => /Archive|modStock|^\S/.test(l)).join('\n')), listing.replace(/\n/g, ' / '));
  rows = await treeRows();
  await page.screenshot({ path: `${out}/code-server-8-moved.png` });
  console.log('rows after the move:', rows.join(' | '));
  await browser.close();
  console.log(results.join("\n"));
  process.exitCode = results.some((r) => r.startsWith("FAIL")) ? 1 : 0;
})().catch((e) => { console.error(e); console.log(results.join('\n')); process.exit(1); });
