// The page's functions for the program: those of Module.page, by names such as "window.setTitle".
mergeInto(LibraryManager.library, {
  $callPage: function (name, given, bytes) {
    const [service, act] = UTF8ToString(name).split('.');
    const holder = Module.page[service];
    const call = holder && holder[act];
    if (!call) {
      console.error('The page lacks ' + service + '.' + act);
      return undefined;
    }
    const values = JSON.parse(UTF8ToString(given));
    if (bytes) values.push(bytes);
    return call.apply(holder, values);
  },
  tarvelin_call__deps: ['$callPage'],
  tarvelin_call: function (name, given) {
    return Number(callPage(name, given)) || 0;
  },
  tarvelin_ask__deps: ['$callPage', 'malloc'],
  tarvelin_ask: function (name, given) {
    const answer = callPage(name, given);
    if (answer === undefined || answer === null) return 0;
    const size = lengthBytesUTF8(answer) + 1;
    const place = _malloc(size);
    stringToUTF8(answer, place, size);
    return place;
  },
  tarvelin_give__deps: ['$callPage'],
  tarvelin_give: function (name, given, bytes, count) {
    return Number(callPage(name, given, HEAPU8.subarray(bytes, bytes + count))) || 0;
  },
  tarvelin_store_is_ours: function () {
    return Module.page && !Module.page.store.isOurs() ? 0 : 1;
  },
});
