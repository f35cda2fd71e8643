// Reads Arbolet's icon sheets (one character a pixel, see src/windows/icons/art/) and writes PNG
// files with nothing but zlib, so the build needs no native image library.
'use strict';
const zlib = require('zlib');

/** Parses a sheet: { size, icons: Map<name, Uint8Array RGBA> }; throws naming the line of a fault. */
function parseSheet(text, name = 'sheet') {
  const lines = text.split(/\r?\n/);
  let size = 0;
  const palette = new Map([['.', [0, 0, 0, 0]]]);
  const icons = new Map();
  for (let i = 0; i < lines.length; i++) {
    const line = lines[i];
    const where = `${name}:${i + 1}`;
    if (line.trim() === '' || line.startsWith('#')) continue;
    let m;
    if ((m = /^size (\d+)$/.exec(line))) {
      size = Number(m[1]);
    } else if ((m = /^colour (\S) ([0-9A-Fa-f]{6})$/.exec(line))) {
      const v = parseInt(m[2], 16);
      palette.set(m[1], [(v >> 16) & 255, (v >> 8) & 255, v & 255, 255]);
    } else if ((m = /^icon (\S+)$/.exec(line))) {
      if (size <= 0) throw new Error(`${where}: an icon before the sheet's size`);
      const pixels = new Uint8Array(size * size * 4);
      for (let y = 0; y < size; y++) {
        const row = lines[i + 1 + y];
        if (row === undefined || row.length !== size) {
          throw new Error(`${name}:${i + 2 + y}: icon ${m[1]} needs ${size} rows of ${size} pixels`);
        }
        for (let x = 0; x < size; x++) {
          const colour = palette.get(row[x]);
          if (!colour) throw new Error(`${name}:${i + 2 + y}: unknown colour '${row[x]}' in icon ${m[1]}`);
          pixels.set(colour, (y * size + x) * 4);
        }
      }
      icons.set(m[1], pixels);
      i += size;
    } else {
      throw new Error(`${where}: cannot read "${line.slice(0, 40)}"`);
    }
  }
  return { size, icons };
}

const crcTable = (() => {
  const t = new Uint32Array(256);
  for (let n = 0; n < 256; n++) {
    let c = n;
    for (let k = 0; k < 8; k++) c = c & 1 ? 0xedb88320 ^ (c >>> 1) : c >>> 1;
    t[n] = c >>> 0;
  }
  return t;
})();

function crc32(buf) {
  let c = 0xffffffff;
  for (const b of buf) c = crcTable[(c ^ b) & 255] ^ (c >>> 8);
  return (c ^ 0xffffffff) >>> 0;
}

function chunk(type, data) {
  const out = Buffer.alloc(12 + data.length);
  out.writeUInt32BE(data.length, 0);
  out.write(type, 4, 'ascii');
  data.copy(out, 8);
  out.writeUInt32BE(crc32(out.subarray(4, 8 + data.length)), 8 + data.length);
  return out;
}

/** Encodes RGBA pixels as a PNG (colour type 6, 8 bits, no filter). */
function encodePng(width, height, rgba) {
  const raw = Buffer.alloc(height * (width * 4 + 1));
  for (let y = 0; y < height; y++) {
    raw[y * (width * 4 + 1)] = 0;
    Buffer.from(rgba.buffer, rgba.byteOffset + y * width * 4, width * 4).copy(raw, y * (width * 4 + 1) + 1);
  }
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header.set([8, 6, 0, 0, 0], 8);
  return Buffer.concat([
    Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]),
    chunk('IHDR', header),
    chunk('IDAT', zlib.deflateSync(raw, { level: 9 })),
    chunk('IEND', Buffer.alloc(0)),
  ]);
}

/** Decodes what encodePng writes (8-bit RGBA, any filter), for the tests. */
function decodePng(buf) {
  if (buf.readUInt32BE(0) !== 0x89504e47) throw new Error('not a PNG');
  let pos = 8;
  let width = 0, height = 0;
  const idat = [];
  while (pos < buf.length) {
    const len = buf.readUInt32BE(pos);
    const type = buf.toString('ascii', pos + 4, pos + 8);
    const data = buf.subarray(pos + 8, pos + 8 + len);
    if (crc32(buf.subarray(pos + 4, pos + 8 + len)) !== buf.readUInt32BE(pos + 8 + len)) throw new Error(`bad CRC in ${type}`);
    if (type === 'IHDR') {
      width = data.readUInt32BE(0);
      height = data.readUInt32BE(4);
      if (data[8] !== 8 || data[9] !== 6) throw new Error('only 8-bit RGBA is read');
    } else if (type === 'IDAT') idat.push(data);
    pos += 12 + len;
  }
  const raw = zlib.inflateSync(Buffer.concat(idat));
  const stride = width * 4;
  const out = new Uint8Array(width * height * 4);
  for (let y = 0; y < height; y++) {
    const f = raw[y * (stride + 1)];
    for (let x = 0; x < stride; x++) {
      const v = raw[y * (stride + 1) + 1 + x];
      const a = x >= 4 ? out[y * stride + x - 4] : 0;
      const b = y > 0 ? out[(y - 1) * stride + x] : 0;
      const c = x >= 4 && y > 0 ? out[(y - 1) * stride + x - 4] : 0;
      let pred = 0;
      if (f === 1) pred = a;
      else if (f === 2) pred = b;
      else if (f === 3) pred = (a + b) >> 1;
      else if (f === 4) {
        const p = a + b - c, pa = Math.abs(p - a), pb = Math.abs(p - b), pc = Math.abs(p - c);
        pred = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
      }
      out[y * stride + x] = (v + pred) & 255;
    }
  }
  return { width, height, rgba: out };
}

module.exports = { parseSheet, encodePng, decodePng, crc32 };
