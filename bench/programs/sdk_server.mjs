// A server on the official TypeScript SDK whose tools ask the application.
// usage: node sdk_server.mjs MODULES SOCKET   (MODULES: where the SDK is installed)
import { createRequire } from 'node:module';
import { connect } from 'node:net';
import { createInterface } from 'node:readline';

const [modules, socketPath] = process.argv.slice(2);
const require = createRequire(`${modules}/package.json`);
const { McpServer } = require('@modelcontextprotocol/sdk/server/mcp.js');
const { StdioServerTransport } = require('@modelcontextprotocol/sdk/server/stdio.js');

const waiting = [];
let application;

function ask(method) {
  if (!application) {
    application = connect(socketPath);
    createInterface({ input: application }).on('line', (line) => waiting.shift()(JSON.parse(line).result));
  }
  return new Promise((resolve) => {
    waiting.push(resolve);
    application.write(`${JSON.stringify({ id: 1, jsonrpc: '2.0', method })}\n`);
  });
}

async function forward(method) {
  return { content: [{ type: 'text', text: JSON.stringify(await ask(method)) }] };
}

process.stdin.on('end', () => process.exit());  // an open socket would keep it
const server = new McpServer({ name: 'peer', version: '1' });
server.registerTool('vell_get_outlines', {}, () => forward('outline.list'));
server.registerTool('vell_get_outline', {}, () => forward('outline.get'));
await server.connect(new StdioServerTransport());
