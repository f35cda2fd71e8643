// Packs the extension into a .vsix with vsce: the bundled extension (so no node_modules), the
// grammars, the icons, and the arbolet programs that scripts/package.sh put under bin/.
//   node scripts/package-vsix.js [OUT.vsix]      default out/arbolet-vb6-VERSION.vsix
'use strict';
const fs = require('fs');
const path = require('path');
const { execFileSync } = require('child_process');

const root = path.resolve(__dirname, '..');
const pkg = JSON.parse(fs.readFileSync(path.join(root, 'package.json'), 'utf8'));
const out = path.resolve(process.argv[2] ?? path.join(root, 'out', `${pkg.name}-${pkg.version}.vsix`));
fs.mkdirSync(path.dirname(out), { recursive: true });
for (const needed of ['bundle/extension.js', 'media/icons/module.png']) {
  if (!fs.existsSync(path.join(root, needed))) {
    console.error(`${needed} is missing: run "npm run build" first`);
    process.exit(1);
  }
}
// The product's licence is shown in the Extensions view; the repository keeps one copy.
fs.copyFileSync(path.resolve(root, '../../LICENSE'), path.join(root, 'LICENSE'));
const vsce = require.resolve('@vscode/vsce/vsce');
execFileSync(
  process.execPath,
  [vsce, 'package', '--no-dependencies', '--allow-missing-repository', '--no-rewrite-relative-links', '--out', out],
  { cwd: root, stdio: 'inherit' },
);
const bins = ['bin/linux-x64/arbolet', 'bin/win32-x64/arbolet.exe'].filter((b) => fs.existsSync(path.join(root, b)));
console.log(`${path.relative(process.cwd(), out)} (arbolet programs inside: ${bins.length ? bins.join(', ') : 'none'})`);
