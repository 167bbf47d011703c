// The phone's live event stream: one EventSource, its named events handed to the page's parts.

const EVENT_NAMES = ['screen', 'state', 'requests', 'log', 'pushes'];

// handlers: {screen(snapshot), state(state), requests(list), log(list), pushes(list),
// connection(isOpen)}. The browser reconnects by itself; on reconnect the host sends everything
// again, so each handler must accept entries it has already seen.
export function connectEvents(handlers, url = 'api/events') {
  const source = new EventSource(url);
  for (const name of EVENT_NAMES) {
    source.addEventListener(name, (event) => deliver(handlers[name], name, event.data));
  }
  source.addEventListener('open', () => handlers.connection?.(true));
  source.addEventListener('error', () => handlers.connection?.(source.readyState === EventSource.OPEN));
  return source;
}

function deliver(handler, name, data) {
  if (!handler) {
    return;
  }
  let value;
  try {
    value = JSON.parse(data);
  } catch (error) {
    console.warn(`agp-phone: event '${name}' is not JSON`, error);
    return;
  }
  handler(value);
}
