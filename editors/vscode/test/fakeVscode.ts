// A small stand-in for the `vscode` module: the classes the view builds and the window and command
// functions it calls, with scripted answers for dialogs and a record of what was shown.
import * as path from 'path';

export class Uri {
  private constructor(
    readonly scheme: string,
    readonly authority: string,
    readonly path: string,
  ) {}
  static parse(value: string): Uri {
    const m = /^([a-zA-Z][\w+.-]*):(?:\/\/([^/]*))?(.*)$/.exec(value);
    if (!m) throw new Error(`not a URI: ${value}`);
    return new Uri(m[1], m[2] ?? '', decodeURIComponent(m[3]));
  }
  static file(fsPath: string): Uri {
    return new Uri('file', '', fsPath.replace(/\\/g, '/').replace(/^([A-Za-z]):/, '/$1:'));
  }
  static from(parts: { scheme: string; authority?: string; path?: string }): Uri {
    return new Uri(parts.scheme, parts.authority ?? '', parts.path ?? '');
  }
  static joinPath(base: Uri, ...segments: string[]): Uri {
    return new Uri(base.scheme, base.authority, path.posix.join(base.path, ...segments));
  }
  get fsPath(): string {
    return this.path;
  }
  toString(): string {
    const encoded = this.path.split('/').map((s) => encodeURIComponent(s).replace(/%3A/g, ':')).join('/');
    return `${this.scheme}://${this.authority}${encoded}`;
  }
}

export enum TreeItemCollapsibleState {
  None = 0,
  Collapsed = 1,
  Expanded = 2,
}

export class ThemeColor {
  constructor(readonly id: string) {}
}

export class ThemeIcon {
  constructor(
    readonly id: string,
    readonly color?: ThemeColor,
  ) {}
}

export class TreeItem {
  id?: string;
  description?: string;
  accessibilityInformation?: { label: string };
  tooltip?: string;
  iconPath?: unknown;
  contextValue?: string;
  resourceUri?: Uri;
  command?: { command: string; title: string; arguments?: unknown[] };
  constructor(
    public label: string,
    public collapsibleState: TreeItemCollapsibleState = TreeItemCollapsibleState.None,
  ) {}
}

export class EventEmitter<T> {
  private listeners: ((e: T) => void)[] = [];
  readonly fired: T[] = [];
  readonly event = (listener: (e: T) => void) => {
    this.listeners.push(listener);
    return { dispose: () => (this.listeners = this.listeners.filter((l) => l !== listener)) };
  };
  fire(e: T): void {
    this.fired.push(e);
    for (const l of this.listeners) l(e);
  }
}

export class DataTransferItem {
  constructor(readonly value: unknown) {}
}

export class DataTransfer {
  private items = new Map<string, DataTransferItem>();
  get(mime: string) {
    return this.items.get(mime);
  }
  set(mime: string, item: DataTransferItem) {
    this.items.set(mime, item);
  }
}

export class Position {
  constructor(
    readonly line: number,
    readonly character: number,
  ) {}
}

export class Range {
  constructor(
    readonly start: Position,
    readonly end: Position,
  ) {}
}

/** What the fake window was asked to do, and the answers it gives to the next dialogs. */
export const recorded = {
  errors: [] as string[],
  infos: [] as string[],
  inputBoxes: [] as { prompt?: string; value?: string }[],
  quickPicks: [] as { items: string[]; placeHolder?: string }[],
  shownDocuments: [] as { uri: Uri; selection?: Range }[],
  inputAnswers: [] as (string | undefined)[],
  pickAnswers: [] as (string | undefined)[],
  commands: new Map<string, (...args: any[]) => unknown>(),
};

export function resetRecorded(): void {
  recorded.errors.length = 0;
  recorded.infos.length = 0;
  recorded.inputBoxes.length = 0;
  recorded.quickPicks.length = 0;
  recorded.shownDocuments.length = 0;
  recorded.inputAnswers.length = 0;
  recorded.pickAnswers.length = 0;
  recorded.commands.clear();
}

export const window = {
  activeTextEditor: undefined as undefined | { document: { uri: Uri } },
  async showErrorMessage(message: string) {
    recorded.errors.push(message);
    return undefined;
  },
  async showInformationMessage(message: string) {
    recorded.infos.push(message);
    return undefined;
  },
  async showInputBox(options: { prompt?: string; value?: string }) {
    recorded.inputBoxes.push(options);
    return recorded.inputAnswers.shift();
  },
  async showQuickPick(items: string[], options: { placeHolder?: string }) {
    recorded.quickPicks.push({ items: [...items], placeHolder: options?.placeHolder });
    return recorded.pickAnswers.shift();
  },
  async showTextDocument(uri: Uri, options: { selection?: Range }) {
    recorded.shownDocuments.push({ uri, selection: options?.selection });
  },
};

export const commands = {
  registerCommand(name: string, run: (...args: any[]) => unknown) {
    if (recorded.commands.has(name)) throw new Error(`command ${name} registered twice`);
    recorded.commands.set(name, run);
    return { dispose: () => recorded.commands.delete(name) };
  },
  async executeCommand(name: string, ...args: unknown[]) {
    const run = recorded.commands.get(name);
    if (!run) throw new Error(`command '${name}' not found`);
    return run(...args);
  },
};
