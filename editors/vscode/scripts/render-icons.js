// Renders the tree icons the Windows tree draws into media/icons/: NAME.png from the 16-pixel
// sheet and NAME@2x.png from the 32-pixel one.
'use strict';
const fs = require('fs');
const path = require('path');
const { parseSheet, encodePng } = require('./icon-sheet');

const art = path.resolve(__dirname, '../../../src/windows/icons/art');
const out = path.resolve(__dirname, '../media/icons');

function render(sheetFile, suffix) {
  const file = path.join(art, sheetFile);
  const { size, icons } = parseSheet(fs.readFileSync(file, 'utf8'), file);
  for (const [name, pixels] of icons) {
    fs.writeFileSync(path.join(out, `${name}${suffix}.png`), encodePng(size, size, pixels));
  }
  return icons.size;
}

fs.mkdirSync(out, { recursive: true });
const small = render('icons16.txt', '');
const large = render('icons32.txt', '@2x');
if (small !== large) {
  console.error(`icons16.txt has ${small} icons and icons32.txt ${large}: every icon needs both sizes`);
  process.exit(1);
}
console.log(`${small} icons at 16 and 32 pixels in ${path.relative(process.cwd(), out)}`);
