// The phone's own settings that the page changes as a user would: its date and time formats.

const FORMATS = {
  date: ['DD.MM.YYYY', 'MM/DD/YYYY', 'YYYY-MM-DD'],
  time: ['24HR', '12HR'],
};

// Fills the two selects and sends a choice to the phone at once; `say` reports a failure.
export function bindFormatSettings(dateSelect, timeSelect, say) {
  for (const [select, which] of [[dateSelect, 'date'], [timeSelect, 'time']]) {
    for (const format of FORMATS[which]) {
      const option = document.createElement('option');
      option.value = format;
      option.textContent = format;
      select.append(option);
    }
    select.addEventListener('change', async () => {
      try {
        const response = await fetch('api/formats', {
          method: 'POST',
          headers: { 'Content-Type': 'application/json' },
          body: JSON.stringify({ [which]: select.value }),
        });
        if (!response.ok) {
          throw new Error((await response.json()).error ?? response.statusText);
        }
      } catch (error) {
        say(`Failed: ${error.message}`);
      }
    });
  }
}

// The phone's state says which formats are in force, also after a change made elsewhere.
export function showFormats(dateSelect, timeSelect, state) {
  if (state?.dateFormat && document.activeElement !== dateSelect) {
    dateSelect.value = state.dateFormat;
  }
  if (state?.timeFormat && document.activeElement !== timeSelect) {
    timeSelect.value = state.timeFormat;
  }
}
