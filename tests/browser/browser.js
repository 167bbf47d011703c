// Debian's chromium, headless, with a fresh profile and nothing that talks to outside hosts.
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';

const CHROMIUM = process.env.AGP_CHROMIUM ?? '/usr/bin/chromium';

const ARGUMENTS = [
  '--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
  '--disable-background-networking', '--disable-component-update', '--disable-sync',
];

// Both come from scripts/install-deps; the tests never download anything themselves.
async function playwright() {
  if (!fs.existsSync(CHROMIUM)) {
    throw new Error(`no browser at ${CHROMIUM}: run scripts/install-deps (Debian package chromium)`);
  }
  try {
    return await import('playwright-core');
  } catch (error) {
    throw new Error(`playwright-core is missing: run scripts/install-deps (npm ci in tests/browser)\n${error}`);
  }
}

// Resolves with {context, close()}; the profile folder goes away on close.
export async function launchBrowser({ downloads } = {}) {
  const { chromium } = await playwright();
  const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'agp-web-profile-'));
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: CHROMIUM,
    headless: true,
    args: ARGUMENTS,
    viewport: { width: 1400, height: 900 },
    acceptDownloads: true,
    downloadsPath: downloads,
  });
  return {
    context,
    close: async () => {
      await context.close();
      fs.rmSync(profile, { recursive: true, force: true });
    },
  };
}
