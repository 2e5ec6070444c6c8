// The search, and the same job in several languages: one language is shown, and a click selects another for all pages. Without
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

// ---- search: all words have to occur; names count more than headings, and headings more than text -----------------
function rank([name, kind, , text], words) {
  const title = name.toLowerCase();
  let rank = 0;
  for (const word of words) {
    const at = title.indexOf(word);
    if (title === word) rank += 100;
    else if (at === 0) rank += 40;
    else if (at > 0) rank += /[\s_]/.test(title[at - 1]) ? 30 : 20;
    else if (kind.toLowerCase().includes(word)) rank += 2;
    else if (text.toLowerCase().includes(word)) rank += 1;
    else return 0;
  }
  return rank - title.length / 1000;
}
function excerpt(text, word) {
  const at = Math.max(0, text.toLowerCase().indexOf(word) - 40);
  return (at > 0 ? '... ' : '') + text.slice(at, at + 130) + (text.length > at + 130 ? ' ...' : '');
}
function element(tag, text, parent) {
  const made = document.createElement(tag);
  made.textContent = text;
  parent.append(made);
  return made;
}
document.addEventListener('DOMContentLoaded', () => {
  const field = document.querySelector('#search input'), list = document.querySelector('#search ol');
  let selected = 0;
  function select(number) {
    const links = list.querySelectorAll('a');
    if (links.length === 0) return;
    selected = (number + links.length) % links.length;
    links.forEach((link, at) => link.classList.toggle('selected', at === selected));
    links[selected].scrollIntoView({block: 'nearest'});
  }
  function search() {
    const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
    list.replaceChildren();
    list.hidden = words.length === 0 || !window.searchIndex;
    if (list.hidden) return;
    const found = window.searchIndex.map((entry) => [rank(entry, words), entry]).filter(([value]) => value > 0);
    found.sort((a, b) => b[0] - a[0]);
    for (const [, [name, kind, address, text]] of found.slice(0, 40)) {
      const link = element('a', '', element('li', '', list));
      link.href = address;
      element('b', name, link);
      element('i', kind, link);
      element('span', excerpt(text, words[0]), link);
    }
    if (found.length === 0) element('li', 'Nothing found', list);
    select(0);
  }
  field.addEventListener('focus', () => {
    // The index is loaded when it is needed, also from a file.
    if (window.searchIndex || document.querySelector('script[src="search_index.js"]')) return;
    const script = document.createElement('script');
    script.src = 'search_index.js';
    script.addEventListener('load', search);
    document.head.append(script);
  });
  field.addEventListener('input', search);
  field.addEventListener('keydown', (event) => {
    if (event.key === 'ArrowDown') select(selected + 1);
    else if (event.key === 'ArrowUp') select(selected - 1);
    else if (event.key === 'Enter') list.querySelector('a.selected')?.click();
    else if (event.key === 'Escape') list.hidden = true;
    else return;
    event.preventDefault();
  });
  document.addEventListener('keydown', (event) => {
    if (event.key !== '/' || event.target.matches('input, textarea')) return;
    event.preventDefault();
    field.focus();
    field.select();
  });
  document.addEventListener('click', (event) => {
    if (!event.target.closest('#search')) list.hidden = true;
    else if (event.target.closest('a')) list.hidden = true;
  });
});
