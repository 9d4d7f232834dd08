//! A safe pattern on top of the C functions. No crate is needed.

use std::ffi::{c_char, CString};
use std::ops::Range;

#[repr(C)]
struct Context {
    tag: u32,
    options: u32,
    code_length: i32,
    group_count: i32,
    last_literal: i32,
    match_limit: i32,
    format: i32,
    search_hint: i32,
    work_area: [u64; 6000],
}

#[repr(C)]
#[derive(Clone, Copy)]
struct FindResult {
    start: *const u8,
    length: i32,
}

#[repr(C)]
struct ReplaceContext {
    item_count: i32,
    items: *const u8,
}

extern "C" {
    fn tavsRegExpInitAlloc(pattern: *const c_char, options: *const c_char, state: *mut *mut Context, offset: *mut i32) -> i32;
    fn tavsRegExpFree(state: *mut Context) -> i32;
    fn tavsRegExpFind_8u(src: *const u8, len: i32, state: *mut Context, found: *mut FindResult, count: *mut i32) -> i32;
    fn tavsRegExpReplaceGetSize(template: *const c_char, size: *mut i32) -> i32;
    fn tavsRegExpReplaceInit(template: *const c_char, context: *mut ReplaceContext) -> i32;
    fn tavsRegExpReplace_8u(
        src: *const u8, src_len: *mut i32, dst: *mut u8, dst_len: *mut i32, results: *mut FindResult,
        count: *mut i32, pattern: *mut Context, context: *const ReplaceContext,
    ) -> i32;
}

/// Why a call failed: the status, and for a bad pattern the byte at which the error was found.
#[derive(Debug, PartialEq)]
pub struct Error {
    pub status: i32,
    pub offset: i32,
}

fn check(status: i32, offset: i32) -> Result<(), Error> {
    if status < 0 { Err(Error { status, offset }) } else { Ok(()) }
}

fn zero_terminated(text: &str) -> Result<CString, Error> {
    CString::new(text).map_err(|bad| Error { status: -5, offset: bad.nul_position() as i32 })
}

fn length(text: &[u8]) -> Result<i32, Error> {
    i32::try_from(text.len()).map_err(|_| Error { status: -119, offset: 0 })
}

/// A compiled pattern. A search writes into it, hence `&mut self`: threads use patterns of their own.
pub struct Pattern {
    context: *mut Context,
    replaces_all: bool,
}

// The block belongs to the pattern alone and may be used by any one thread.
unsafe impl Send for Pattern {}

impl Drop for Pattern {
    fn drop(&mut self) {
        unsafe { tavsRegExpFree(self.context) };
    }
}

impl Pattern {
    /// Options are letters of "gimsx"; with "g", `replace` replaces every match.
    pub fn new(pattern: &str, options: &str) -> Result<Pattern, Error> {
        let (text, letters) = (zero_terminated(pattern)?, zero_terminated(options)?);
        let (mut context, mut offset) = (std::ptr::null_mut(), 0);
        let status = unsafe { tavsRegExpInitAlloc(text.as_ptr(), letters.as_ptr(), &mut context, &mut offset) };
        check(status, offset)?;
        Ok(Pattern { context, replaces_all: options.contains('g') })
    }

    fn group_count(&self) -> usize {
        unsafe { (*self.context).group_count as usize }
    }

    /// The first match as byte ranges of the subject, the whole match first; None for a group that took no part.
    /// For patterns without the option "g".
    pub fn find(&mut self, subject: &str) -> Result<Option<Vec<Option<Range<usize>>>>, Error> {
        assert!(!self.replaces_all, "the option g asks for all matches");
        // "\b" may look at the byte behind the subject.
        let mut bytes = subject.as_bytes().to_vec();
        bytes.push(0);
        let mut found = vec![FindResult { start: std::ptr::null(), length: -1 }; self.group_count()];
        let mut count = found.len() as i32;
        let status = unsafe {
            tavsRegExpFind_8u(bytes.as_ptr(), length(subject.as_bytes())?, self.context, found.as_mut_ptr(), &mut count)
        };
        check(status, 0)?;
        if count == 0 {
            return Ok(None);
        }
        let range = |entry: &FindResult| {
            if entry.length < 0 {
                return None;
            }
            let start = entry.start as usize - bytes.as_ptr() as usize;
            Some(start..start + entry.length as usize)
        };
        Ok(Some(found.iter().map(range).collect()))
    }

    /// The subject with every match replaced; for patterns with the option "g". The result is given as much room as
    /// it turns out to need.
    pub fn replace(&mut self, subject: &str, template: &str) -> Result<Vec<u8>, Error> {
        assert!(self.replaces_all, "the option g asks for all matches");
        let text = zero_terminated(template)?;
        let mut size = 0;
        check(unsafe { tavsRegExpReplaceGetSize(text.as_ptr(), &mut size) }, 0)?;
        let mut block = vec![0u64; size as usize / 8 + 1];
        let items = block.as_mut_ptr() as *mut ReplaceContext;
        check(unsafe { tavsRegExpReplaceInit(text.as_ptr(), items) }, 0)?;
        let mut bytes = subject.as_bytes().to_vec();
        bytes.push(0);
        let total = length(subject.as_bytes())?;
        let mut matches = 16;
        let mut capacity = total as usize + 64;
        while total > 0 {
            let mut found = vec![FindResult { start: std::ptr::null(), length: -1 }; matches * self.group_count()];
            let mut out = vec![0u8; capacity];
            let (mut used, mut written, mut count) = (total, capacity as i32, found.len() as i32);
            let status = unsafe {
                tavsRegExpReplace_8u(
                    bytes.as_ptr(), &mut used, out.as_mut_ptr(), &mut written, found.as_mut_ptr(), &mut count,
                    self.context, items,
                )
            };
            check(status, 0)?;
            if count as usize == found.len() {
                matches *= 4;
            } else if used < total {
                capacity *= 2;
            } else {
                out.truncate(written as usize);
                return Ok(out);
            }
        }
        Ok(Vec::new()) // The library replaces nothing in an empty text.
    }
}
