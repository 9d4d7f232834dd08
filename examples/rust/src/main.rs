//! The typical request from Rust: one search, one replacement, and what an error looks like.

mod tavch;

use tavch::{Error, Pattern};

fn main() -> Result<(), Error> {
    let subject = "xxABBBcyy abc";
    let mut pattern = Pattern::new("a(b+)c", "i")?;
    if let Some(groups) = pattern.find(subject)? {
        for (number, group) in groups.iter().enumerate() {
            match group {
                Some(range) => println!("{number}: {} at {}", &subject[range.clone()], range.start),
                None => println!("{number}: took no part"),
            }
        }
    }

    let mut all = Pattern::new("a(b+)c", "ig")?;
    println!("{}", String::from_utf8_lossy(&all.replace(subject, "<$1>")?));
    println!("{}", all.replace(&"abc".repeat(100), "<$&>$&")?.len());

    if let Err(error) = Pattern::new("a(b", "") {
        println!("status {} at byte {}", error.status, error.offset);
    }
    Ok(())
}
