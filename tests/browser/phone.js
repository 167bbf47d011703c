// Runs agp-phone with its demo as a process on free loopback ports and ends it with SIGTERM.
import { spawn } from 'node:child_process';
import path from 'node:path';
import { fileURLToPath } from 'node:url';

const START_TIMEOUT_MS = 20000;
let started = 0;
// import.meta.dirname needs Node 20.11; Debian 12 ships Node 18.
const HERE = path.dirname(fileURLToPath(import.meta.url));

export function buildDirectory() {
  return process.env.AGP_BUILD_DIR ?? path.resolve(HERE, '../../build/default');
}

// Each run needs its own application name: the phone keeps a download file named after it.
function uniqueApplication() {
  started += 1;
  return `Web-${process.pid}-${started}`;
}

// Resolves with {pageUrl, process, output(), stop()} once the program printed its web page address.
export function startPhone({ model = 'soft-keys' } = {}) {
  const program = process.env.AGP_PHONE ?? path.join(buildDirectory(), 'bin', 'agp-phone');
  const child = spawn(program, ['--demo', '--push', '127.0.0.1:0', '--http', '127.0.0.1:0', '--app',
    uniqueApplication(), '--model', model], { stdio: ['ignore', 'pipe', 'pipe'] });
  let output = '';
  const exited = new Promise((resolve) => child.on('exit', (code, signal) => resolve({ code, signal })));
  return new Promise((resolve, reject) => {
    const timer = setTimeout(() => fail(`no web page address within ${START_TIMEOUT_MS} ms`), START_TIMEOUT_MS);
    function fail(reason) {
      clearTimeout(timer);
      child.kill('SIGKILL');
      reject(new Error(`agp-phone: ${reason}\n${output}`));
    }
    const collect = (chunk) => {
      output += chunk;
      const found = output.match(/agp-phone: web page at (http:\/\/\S+)/);
      if (found) {
        clearTimeout(timer);
        resolve({
          pageUrl: found[1],
          output: () => output,
          // Resolves with the exit code; a program that ignores SIGTERM is killed after a while.
          stop: async () => {
            child.kill('SIGTERM');
            const killer = setTimeout(() => child.kill('SIGKILL'), 10000);
            const result = await exited;
            clearTimeout(killer);
            return result;
          },
        });
      }
    };
    child.stdout.setEncoding('utf8').on('data', collect);
    child.stderr.setEncoding('utf8').on('data', (chunk) => { output += chunk; });
    child.on('error', (error) => fail(error.message));
    exited.then(({ code, signal }) => fail(`ended early (${code ?? signal})`));
  });
}
