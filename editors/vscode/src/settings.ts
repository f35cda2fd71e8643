// The settings the server takes: the display options of the code trees and the code page of the
// files, which follows the encoding VS Code reads VB6 files with unless arbolet.codePage is set.

export const displayOptionNames = [
  'hideVariables',
  'hideConstants',
  'hideCompiler',
  'hideEnums',
  'hideTypes',
  'hideSectionEnds',
  'sortByName',
] as const;

export type DisplayOptions = Record<(typeof displayOptionNames)[number], boolean>;

export interface ServerSettings {
  codePage: number;
  display: DisplayOptions;
}

export const defaultCodePage = 1252;

// VS Code's names of the single-byte and East Asian encodings that VB6 source files are saved in.
const codePages: Record<string, number> = {
  windows1250: 1250,
  windows1251: 1251,
  windows1252: 1252,
  windows1253: 1253,
  windows1254: 1254,
  windows1255: 1255,
  windows1256: 1256,
  windows1257: 1257,
  windows1258: 1258,
  windows874: 874,
  shiftjis: 932,
  gbk: 936,
  gb2312: 936,
  euckr: 949,
  big5hkscs: 950,
  cp437: 437,
  cp850: 850,
  cp852: 852,
  cp865: 865,
  cp866: 866,
  koi8r: 20866,
  iso88591: 28591,
};

/** The code page of a files.encoding value, or undefined for one without a VB6 code page. */
export function codePageOfEncoding(encoding: unknown): number | undefined {
  if (typeof encoding !== 'string') return undefined;
  return codePages[encoding.toLowerCase()];
}

/** Reads a configuration section the way vscode.WorkspaceConfiguration.get does. */
export type Getter = (key: string) => unknown;

/**
 * @param arbolet the "arbolet" section
 * @param vb6Encoding files.encoding as VS Code applies it to the vb6 language
 */
export function serverSettings(arbolet: Getter, vb6Encoding: unknown): ServerSettings {
  const display = {} as DisplayOptions;
  for (const name of displayOptionNames) display[name] = arbolet(`display.${name}`) === true;
  const chosen = arbolet('codePage');
  const codePage =
    typeof chosen === 'number' && Number.isInteger(chosen) && chosen > 0
      ? chosen
      : (codePageOfEncoding(vb6Encoding) ?? defaultCodePage);
  return { codePage, display };
}
