// The phone around the application: calls with their buttons, the call screen over the display,
// and the tones the application plays (heard once the user turns sound on).

const TONES = { 2: ['short', 0.08], 3: ['standard', 0.2], 4: ['long', 0.5] };

export class PhonePanel {
  constructor(root, callScreen) {
    this.calls = root.querySelector('#calls');
    this.tones = root.querySelector('#tones');
    this.soundButton = root.querySelector('#sound');
    this.callScreen = callScreen;
    this.beepsSeen = null;
    this.audio = null;
    this.soundOn = false;
    this.soundButton.addEventListener('click', () => this.toggleSound());
    root.querySelector('#ring-form').addEventListener('submit', (event) => {
      event.preventDefault();
      const number = root.querySelector('#ring-number').value.trim();
      this.callAction({ action: 'ring', number });
    });
  }

  // Browsers start audio only after a user gesture, so sound stays off until asked for.
  toggleSound() {
    this.soundOn = !this.soundOn;
    if (this.soundOn && !this.audio) {
      this.audio = new AudioContext();
    }
    this.soundButton.textContent = this.soundOn ? 'Sound on' : 'Sound off';
    this.soundButton.setAttribute('aria-pressed', String(this.soundOn));
  }

  update(state, snapshot) {
    this.showCalls(state.calls ?? []);
    this.showCallScreen(state.calls ?? [], snapshot);
    this.showTones(state.beeps ?? [], state.beepsPlayed ?? 0);
  }

  showCalls(calls) {
    this.calls.replaceChildren(...calls.map((call) => this.callView(call)));
    if (calls.length === 0) {
      const none = document.createElement('li');
      none.className = 'none';
      none.textContent = 'No calls';
      this.calls.append(none);
    }
  }

  callView(call) {
    const item = document.createElement('li');
    item.className = `call ${call.state}`;
    item.dataset.call = call.id;
    const far = call.direction === 'incoming' ? call.calling : call.called;
    const text = document.createElement('span');
    text.textContent = `${call.direction === 'incoming' ? '← from' : '→ to'} ${far}: ${call.state}`;
    item.append(text);
    const actions = call.state === 'ringing' ? ['answer', 'hangup']
      : call.state === 'held' ? ['retrieve', 'hangup'] : ['hold', 'hangup'];
    for (const action of actions) {
      const button = document.createElement('button');
      button.type = 'button';
      button.textContent = action === 'hangup' ? 'Hang up' : action[0].toUpperCase() + action.slice(1);
      button.addEventListener('click', () => this.callAction({ action, call: call.id }));
      item.append(button);
    }
    return item;
  }

  // The phone's call screen covers the application while a call is up and the application is
  // not in front.
  showCallScreen(calls, snapshot) {
    const covering = calls.length > 0 && snapshot && !snapshot.shown;
    this.callScreen.hidden = !covering;
    if (covering) {
      const call = calls[calls.length - 1];
      const far = call.direction === 'incoming' ? call.calling : call.called;
      this.callScreen.textContent = `${call.state === 'ringing' ? 'Calling' : 'Call'} ${far} (${call.state})`;
    }
  }

  // The state holds the latest beeps and how many were played in all; the new ones are the last
  // (played - seen) of them.
  showTones(beeps, played) {
    if (this.beepsSeen === null) {
      this.beepsSeen = played; // tones played before the page opened are not replayed
    }
    const fresh = Math.min(Math.max(played - this.beepsSeen, 0), beeps.length);
    for (const beep of beeps.slice(beeps.length - fresh)) {
      const [name, seconds] = TONES[beep] ?? ['click', 0.03];
      const item = document.createElement('li');
      item.textContent = `${new Date().toLocaleTimeString()} ${name} tone`;
      this.tones.append(item);
      this.play(seconds);
    }
    this.beepsSeen = played;
  }

  play(seconds) {
    if (!this.soundOn || !this.audio) {
      return;
    }
    const oscillator = this.audio.createOscillator();
    oscillator.frequency.value = 880;
    oscillator.connect(this.audio.destination);
    oscillator.start();
    oscillator.stop(this.audio.currentTime + seconds);
  }

  async callAction(body) {
    const response = await fetch('api/calls', {
      method: 'POST',
      headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify(body),
    });
    if (!response.ok) {
      const answer = await response.json().catch(() => ({}));
      this.callScreen.title = answer.error ?? `${response.status}`;
    }
  }
}
