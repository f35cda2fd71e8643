// The language server's own requests and notifications that the extension uses, with the shapes
// of their messages, and the little of the client that the tree needs, so that the tree works the
// same over vscode-languageclient in VS Code and over a bare JSON-RPC connection in the tests.

export const ProjectTreeRequest = 'arbolet/projectTree';
export const ProjectTreeChangedNotification = 'arbolet/projectTreeChanged';
export const DocumentSymbolRequest = 'textDocument/documentSymbol';
export const ExecuteCommandRequest = 'workspace/executeCommand';

/** The LSP error code of a command the server refused; its message is the reason. */
export const RequestFailedCode = -32803;

/** LSP SymbolKind.Null: a block error under the statement it belongs to. */
export const ErrorSymbolKind = 21;

export type NodeKind = 'project' | 'folder' | 'component';

export interface ProjectTreeNode {
  key: string;
  text: string;
  kind: NodeKind;
  bold: boolean;
  image: number | null;
  icon: string;
  uri?: string;
  project?: string;
  custom?: boolean;
  children: ProjectTreeNode[];
}

export interface ProjectTreeResult {
  nodes: ProjectTreeNode[];
}

export interface LspPosition {
  line: number;
  character: number;
}

export interface LspRange {
  start: LspPosition;
  end: LspPosition;
}

export interface LspDocumentSymbol {
  name: string;
  detail?: string;
  kind: number;
  range: LspRange;
  selectionRange: LspRange;
  children?: LspDocumentSymbol[];
}

/** What the tree asks of the server: LanguageClient and vscode-jsonrpc's connection both fit. */
export interface ServerConnection {
  sendRequest<R>(method: string, params?: unknown): Promise<R>;
  onNotification(method: string, handler: (params: any) => void): unknown;
}

/** The server's commands. vscode-languageclient registers each as a VS Code command of that name. */
export const serverCommandNames = [
  'arbolet.folders.add',
  'arbolet.folders.remove',
  'arbolet.folders.rename',
  'arbolet.folders.move',
  'arbolet.rename',
] as const;

/** The server's commands, with their arguments in the order the server takes them. */
export type ServerCommand =
  | { command: 'arbolet.folders.add'; arguments: [string, string] }
  | { command: 'arbolet.folders.remove'; arguments: [string, string] }
  | { command: 'arbolet.folders.rename'; arguments: [string, string, string] }
  | { command: 'arbolet.folders.move'; arguments: [string, string, string] }
  | { command: 'arbolet.rename'; arguments: [string, string, string] };

/** Checks a projectTree result, since the tree must not break on a malformed answer. */
export function validProjectTree(result: unknown): ProjectTreeNode[] {
  if (typeof result !== 'object' || result === null) throw new Error('arbolet/projectTree: the answer is not an object');
  const nodes = (result as { nodes?: unknown }).nodes;
  if (!Array.isArray(nodes)) throw new Error('arbolet/projectTree: the answer has no "nodes" list');
  return nodes.map((n, i) => validNode(n, `nodes[${i}]`));
}

const kinds: readonly string[] = ['project', 'folder', 'component'];

function validNode(value: unknown, where: string): ProjectTreeNode {
  if (typeof value !== 'object' || value === null) throw new Error(`arbolet/projectTree: ${where} is not an object`);
  const n = value as Record<string, unknown>;
  if (typeof n.key !== 'string' || typeof n.text !== 'string') {
    throw new Error(`arbolet/projectTree: ${where} lacks its key or text`);
  }
  if (typeof n.kind !== 'string' || !kinds.includes(n.kind)) {
    throw new Error(`arbolet/projectTree: ${where} has an unknown kind ${JSON.stringify(n.kind)}`);
  }
  const children = Array.isArray(n.children) ? n.children : [];
  return {
    key: n.key,
    text: n.text,
    kind: n.kind as NodeKind,
    bold: n.bold === true,
    image: typeof n.image === 'number' ? n.image : null,
    icon: typeof n.icon === 'string' ? n.icon : '',
    uri: typeof n.uri === 'string' ? n.uri : undefined,
    project: typeof n.project === 'string' ? n.project : undefined,
    custom: n.custom === true,
    children: children.map((c, i) => validNode(c, `${where}.children[${i}]`)),
  };
}

/** Keeps the well-formed symbols of a documentSymbol answer (a flat SymbolInformation list gives none). */
export function validSymbols(result: unknown): LspDocumentSymbol[] {
  if (!Array.isArray(result)) return [];
  const out: LspDocumentSymbol[] = [];
  for (const s of result) {
    if (typeof s !== 'object' || s === null) continue;
    const sym = s as Record<string, unknown>;
    if (typeof sym.name !== 'string' || typeof sym.kind !== 'number' || !validRange(sym.range)) continue;
    out.push({
      name: sym.name,
      detail: typeof sym.detail === 'string' ? sym.detail : undefined,
      kind: sym.kind,
      range: sym.range as LspRange,
      selectionRange: validRange(sym.selectionRange) ? (sym.selectionRange as LspRange) : (sym.range as LspRange),
      children: validSymbols(sym.children),
    });
  }
  return out;
}

function validRange(r: unknown): boolean {
  if (typeof r !== 'object' || r === null) return false;
  const range = r as { start?: LspPosition; end?: LspPosition };
  return validPosition(range.start) && validPosition(range.end);
}

function validPosition(p: unknown): boolean {
  return typeof p === 'object' && p !== null &&
    Number.isInteger((p as LspPosition).line) && Number.isInteger((p as LspPosition).character);
}
