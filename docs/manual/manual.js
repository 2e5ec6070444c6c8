// The same job in several languages: one language is shown, and a click selects another for all pages. Without
// scripts, all languages are shown one after the other. Wide tables get a frame that scrolls.
'use strict';
function selectLanguage(name) {
  for (const group of document.querySelectorAll('.languages')) {
    const pieces = [...group.querySelectorAll('.language')];
    const shown = pieces.find((one) => one.dataset.name === name) || pieces[0];
    for (const one of pieces) one.hidden = one !== shown;
    for (const button of group.querySelectorAll('.tabs button')) {
      button.setAttribute('aria-pressed', button.textContent === shown.dataset.name);
    }
  }
  try {
    localStorage.setItem('language', name);
  } catch {
    // A page from a file may have no storage.
  }
}
document.addEventListener('DOMContentLoaded', () => {
  for (const group of document.querySelectorAll('.languages')) {
    const tabs = document.createElement('div');
    tabs.className = 'tabs';
    for (const piece of group.querySelectorAll('.language')) {
      piece.querySelector('p').hidden = true;  // the name of the language
      const button = document.createElement('button');
      button.type = 'button';
      button.textContent = piece.dataset.name;
      button.addEventListener('click', () => {
        const before = group.getBoundingClientRect().top;
        selectLanguage(piece.dataset.name);
        document.getElementById('doc-content').scrollBy(0, group.getBoundingClientRect().top - before);
      });
      tabs.append(button);
    }
    group.prepend(tabs);
  }
  let name = 'C';
  try {
    name = localStorage.getItem('language') || name;
  } catch {
    // As above.
  }
  selectLanguage(name);
  for (const table of document.querySelectorAll('table.markdownTable')) {
    const frame = document.createElement('div');
    frame.className = 'scrolls';
    table.before(frame);
    frame.append(table);
  }
});
