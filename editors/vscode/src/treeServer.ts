// What the project tree asks of the language server, over any connection that can send requests
// and receive notifications. Answers are checked before the tree uses them.

import {
  DocumentSymbolRequest,
  ExecuteCommandRequest,
  LspDocumentSymbol,
  ProjectTreeChangedNotification,
  ProjectTreeNode,
  ProjectTreeRequest,
  ServerCommand,
  ServerConnection,
  validProjectTree,
  validSymbols,
} from './protocol';

export interface TreeServer {
  projectTree(): Promise<ProjectTreeNode[]>;
  documentSymbols(uri: string): Promise<LspDocumentSymbol[]>;
  /** Resolves when the server did it; rejects with the server's reason when it refused. */
  executeCommand(command: ServerCommand): Promise<void>;
  onTreeChanged(handler: (project: string | undefined) => void): void;
}

/**
 * @param beforeSymbols lets the caller make the document known to the server first (VS Code
 *   opens it, so the symbols follow unsaved edits and the server needs no file access of ours).
 */
export function treeServerOver(
  connection: ServerConnection,
  beforeSymbols: (uri: string) => Promise<void> = async () => {},
): TreeServer {
  return {
    async projectTree() {
      return validProjectTree(await connection.sendRequest(ProjectTreeRequest, {}));
    },
    async documentSymbols(uri) {
      await beforeSymbols(uri);
      return validSymbols(await connection.sendRequest(DocumentSymbolRequest, { textDocument: { uri } }));
    },
    async executeCommand(command) {
      await connection.sendRequest(ExecuteCommandRequest, { command: command.command, arguments: command.arguments });
    },
    onTreeChanged(handler) {
      connection.onNotification(ProjectTreeChangedNotification, (params: unknown) => {
        const project = (params as { project?: unknown } | null)?.project;
        handler(typeof project === 'string' ? project : undefined);
      });
    },
  };
}

/** The message of a refused request, as the server worded it. */
export function reasonOf(error: unknown): string {
  if (error instanceof Error && error.message) return error.message;
  if (typeof error === 'object' && error !== null && typeof (error as { message?: unknown }).message === 'string') {
    return (error as { message: string }).message;
  }
  return String(error);
}
